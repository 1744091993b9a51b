import Dispatch
import Foundation
import OrvaneC

/// Makes the calls of a sign-in at the identity service. Nothing that the network does ends the process.
///
/// Make one client, when the application starts, and share it: a second one ends the process. It may be used
/// from any task and any actor. The library needs the main dispatch queue to run, as it does in an
/// application.
public struct PhoneSignInClient: PhoneSignIn {
  /// Prepares the library.
  /// - Parameters:
  ///   - clientId: The application's identifier, which every call sends as `XRAPI-CLIENT-ID`.
  ///   - address: The service's address: `http` or `https`, a host, and optionally a port and a path. Any
  ///     other URL ends the process. Nil: the address that was set when the package was built.
  ///   - failureWords: Returns what to tell a person about a failure that is not a refusal. Called on the
  ///     main queue, for a login or for a reply that cannot be read. Nil: the library's English sentences.
  public init(
    clientId: String? = nil, address: URL? = nil,
    failureWords: (@Sendable (SignInError) -> String)? = nil
  ) {
    // Never released, since the library keeps it until the process ends.
    let words = Unmanaged.passRetained(Words(failureWords ?? \.message)).toOpaque()
    func prepare(_ address: UnsafePointer<CChar>?) {
      var setup = orvane_setup(
        address: address, post: post, failure_words: wordsFor, context: words)
      orvane_prepare(&setup)
    }
    if let address { address.absoluteString.withCString(prepare) } else { prepare(nil) }
    if let clientId { orvane_set_client_id(clientId) }
  }

  public func pictureCode(for mobile: String) async throws -> Data {
    try await call([mobile]) { context in
      orvane_request_picture_code(
        mobile,
        { bytes, size, failure, context in
          end(context, failure) { bytes.map { Data(bytes: $0, count: size) } ?? Data() }
        }, context, release)
    }
  }

  public func sendCode(to mobile: String, pictureText: String) async throws {
    let _: Void = try await call([mobile, pictureText]) { context in
      orvane_request_code(
        mobile, pictureText, { failure, context in end(context, failure) {} }, context, release)
    }
  }

  public func logIn(_ mobile: String, code: String) async throws -> String {
    try await call([mobile, code]) { context in
      orvane_request_login(
        mobile, code,
        { message, failure, context in
          end(context, failure) { message.map { String(cString: $0) } ?? "" }
        }, context, release)
    }
  }

  /// Starts a call and awaits its outcome. `start` receives what the call keeps until its release.
  private func call<Success: Sendable>(
    _ arguments: [String], start: @Sendable (UnsafeMutableRawPointer) -> Void
  ) async throws -> Success {
    guard !arguments.contains(where: { $0.utf8.contains(0) }) else {
      throw SignInError(kind: .notSent, message: "The request could not be sent.")
    }
    let pending = PendingCall<Success>()
    return try await pending.outcome { start(Unmanaged.passRetained(pending).toOpaque()) }
  }
}

/// What the library keeps to make words, until the process ends.
private final class Words: Sendable {
  let make: @Sendable (SignInError) -> String
  init(_ make: @escaping @Sendable (SignInError) -> String) { self.make = make }
}

private func wordsFor(
  _ cause: UnsafePointer<orvane_failure>?, _ words: UnsafeMutableRawPointer?
) -> UnsafeMutablePointer<CChar>? {
  guard let cause, let words else { return nil }
  return strdup(Unmanaged<Words>.fromOpaque(words).takeUnretainedValue().make(SignInError(cause.pointee)))
}

/// Work that the library posts. `@unchecked` is true because the library does not touch it after posting.
private struct Posted: @unchecked Sendable {
  let run: @convention(c) (UnsafeMutableRawPointer?) -> Void
  let work: UnsafeMutableRawPointer?
}

private func post(
  _ run: (@convention(c) (UnsafeMutableRawPointer?) -> Void)?, _ work: UnsafeMutableRawPointer?,
  _ words: UnsafeMutableRawPointer?
) {
  guard let run else { return }
  let posted = Posted(run: run, work: work)
  DispatchQueue.main.async { posted.run(posted.work) }
}

/// Ends a call with its failure or, if there is none, with what `success` returns.
private func end<Success: Sendable>(
  _ context: UnsafeMutableRawPointer?, _ failure: UnsafePointer<orvane_failure>?, _ success: () -> Success
) {
  guard let context else { return }
  let pending = Unmanaged<PendingCall<Success>>.fromOpaque(context).takeUnretainedValue()
  pending.end(failure.map { .failure(SignInError($0.pointee)) } ?? .success(success()))
}

private func release(_ context: UnsafeMutableRawPointer?) {
  if let context { Unmanaged<AnyObject>.fromOpaque(context).release() }
}

extension SignInError {
  fileprivate init(_ failure: orvane_failure) {
    self.init(
      kind: Kind(rawValue: Int(failure.kind.rawValue)) ?? .other, message: String(cString: failure.message),
      code: Int(failure.code), domain: String(cString: failure.domain))
  }
}
