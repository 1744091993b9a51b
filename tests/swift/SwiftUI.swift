// What the documents use of SwiftUI.

@_exported import UIKit

@MainActor @preconcurrency public protocol View {
  associatedtype Body
  @ViewBuilder var body: Body { get }
}
public protocol Primitive: View where Body == Never {}
extension Primitive {
  public var body: Never { return fatalError() }
}

@resultBuilder public enum ViewBuilder {
  public static func buildBlock<each Part: View>(_: repeat each Part) -> Parts { Parts() }
  public static func buildIf(_: Parts?) -> Parts { Parts() }
}
public struct Parts: Primitive {
  nonisolated init() {}
}

@propertyWrapper public struct State<Value> {
  public init(wrappedValue: Value) {}
  public var wrappedValue: Value {
    get { fatalError() }
    nonmutating set {}
  }
  public var projectedValue: Binding<Value> { Binding() }
}
public struct Binding<Value> {}

public struct Text: Primitive {
  public init(_: String) {}
}
public struct Image: Primitive {
  public init(uiImage: UIImage) {}
}
public struct TextField: Primitive {
  public init(_: String, text: Binding<String>) {}
}
public struct Button: Primitive {
  public init(_: String, action: @escaping @MainActor () -> Void) {}
}
public struct Form: Primitive {
  public init<Content: View>(@ViewBuilder content: () -> Content) {}
}
extension View {
  public func textContentType(_: UITextContentType?) -> some View { self }
  public func keyboardType(_: UIKeyboardType) -> some View { self }
}
