import Foundation

/// Why a call failed.
public struct SignInError: Error, Sendable, Equatable {
  /// The kinds of failure that an application may treat differently.
  public enum Kind: Int, Sendable {
    /// The service refused the call: a wrong code, for example.
    case refused
    /// The request could not be built, or a URL on its way cannot be used. Trying again does not help.
    case notSent
    /// The connection failed or was lost. The service may have received the request.
    case noConnection
    /// No reply came in time. The service may have received the request.
    case timedOut
    /// No secure connection could be made.
    case notSecure
    /// A reply came that could not be read, for example from a network that asks for a sign-in of its own.
    case notReadable
    /// Anything else.
    case other
  }

  /// What an application may treat differently.
  public let kind: Kind
  /// One sentence for a person.
  public let message: String
  /// The service's code, 1 for each refused login; or the code of the transfer's error.
  public let code: Int
  /// The service's message, or the domain of the transfer's error.
  public let domain: String

  /// Makes an error, as an application's tests do.
  public init(kind: Kind, message: String, code: Int = 0, domain: String = "") {
    self.kind = kind
    self.message = message
    self.code = code
    self.domain = domain
  }
}

extension SignInError: LocalizedError {
  /// The `message`.
  public var errorDescription: String? { message }
}
