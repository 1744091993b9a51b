// What Foundation adds in Swift. Only the types matter, because nothing here is run.

@_exported import Foundation

extension NSError: Error {}

public struct Data: Sendable {}

extension Data: _ObjectiveCBridgeable {
  public func _bridgeToObjectiveC() -> NSData { fatalError() }
  public static func _forceBridgeFromObjectiveC(_: NSData, result: inout Data?) {}
  public static func _conditionallyBridgeFromObjectiveC(_: NSData, result: inout Data?) -> Bool { false }
  public static func _unconditionallyBridgeFromObjectiveC(_: NSData?) -> Data { Data() }
}

extension String: _ObjectiveCBridgeable {
  public func _bridgeToObjectiveC() -> NSString { fatalError() }
  public static func _forceBridgeFromObjectiveC(_: NSString, result: inout String?) {}
  public static func _conditionallyBridgeFromObjectiveC(_: NSString, result: inout String?) -> Bool { false }
  public static func _unconditionallyBridgeFromObjectiveC(_: NSString?) -> String { "" }
}

extension URLSessionConfiguration {
  public var connectionProxyDictionary: [AnyHashable: Any]? {
    get { nil }
    set {}
  }
}
