import Foundation

/// Signs a user in with a mobile phone number, in three calls. ``PhoneSignInClient`` makes them at the
/// identity service. An application's tests use a type of their own instead.
///
/// A call throws a ``SignInError``, or `CancellationError` if its task is cancelled, and nothing else.
public protocol PhoneSignIn: Sendable {
  /// Fetches a picture whose text the user has to read.
  /// - Parameter mobile: The mobile number, as the service expects it.
  /// - Returns: The bytes of the picture. Make an image from them.
  func pictureCode(for mobile: String) async throws -> Data

  /// Has a code sent by text message.
  /// - Parameter pictureText: What the user read from the picture.
  func sendCode(to mobile: String, pictureText: String) async throws

  /// Logs in.
  /// - Parameter code: The code from the text message.
  /// - Returns: The service's message.
  func logIn(_ mobile: String, code: String) async throws -> String
}
