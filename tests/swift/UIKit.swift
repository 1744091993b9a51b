// What the documents use of UIKit.

@_exported import Foundation

public struct UITextContentType: Sendable {
  public static let telephoneNumber = UITextContentType()
  public static let oneTimeCode = UITextContentType()
}
public enum UIKeyboardType: Sendable { case phonePad, numberPad }

public final class UIImage: Sendable {
  public init?(data: Data) {}
}
@MainActor open class UITextField {
  public init() {}
  public var text: String?
  public var textContentType: UITextContentType!
}
@MainActor open class UIImageView {
  public init() {}
  public var image: UIImage?
}
@MainActor open class UILabel {
  public init() {}
  public var text: String?
}
@MainActor open class UIViewController {
  public init() {}
  open func viewDidLoad() {}
}
