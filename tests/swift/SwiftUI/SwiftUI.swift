// What the documents use of SwiftUI and UIKit, which Linux lacks. Only the types matter: nothing here is run.

import Foundation

public struct UITextContentType: Sendable {
  public static let telephoneNumber = UITextContentType()
  public static let oneTimeCode = UITextContentType()
}
public enum UIKeyboardType: Sendable { case phonePad, numberPad }
public final class UIImage: Sendable {
  public init?(data: Data) {}
}

@MainActor @preconcurrency public protocol View {
  associatedtype Body
  @ViewBuilder var body: Body { get }
}
public protocol Primitive: View where Body == Never {}
extension Primitive {
  public var body: Never { fatalError() }
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
  public var wrappedValue: Value { fatalError() }
  public var projectedValue: Binding<Value> { Binding() }
}
@dynamicMemberLookup public struct Binding<Value> {
  public subscript<Member>(dynamicMember _: WritableKeyPath<Value, Member>) -> Binding<Member> { .init() }
}

public struct Text: Primitive {
  public init(_: String) {}
}
public struct Image: Primitive {
  public init(uiImage: UIImage) {}
}
public struct Link: Primitive {
  public init(_: String, destination: URL) {}
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
public struct TextInputAutocapitalization {
  public static var never: TextInputAutocapitalization { TextInputAutocapitalization() }
}
public enum UIAccessibility {
  public enum Notification { case announcement }
  @MainActor public static func post(notification: Notification, argument: Any?) {}
}
extension View {
  public func accessibilityLabel(_: String) -> some View { self }
  public func autocorrectionDisabled() -> some View { self }
  public func disabled(_: Bool) -> some View { self }
  public func keyboardType(_: UIKeyboardType) -> some View { self }
  public func onChange<Value: Equatable>(of: Value, _: @escaping () -> Void) -> some View { self }
  public func textContentType(_: UITextContentType?) -> some View { self }
  public func textInputAutocapitalization(_: TextInputAutocapitalization?) -> some View { self }
}
