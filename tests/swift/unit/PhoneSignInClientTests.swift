import Foundation
import XCTest

@testable import OrvaneSignIn

final class PhoneSignInClientTests: XCTestCase {
  func testWithoutAServiceEachCallThrows() async {
    let client = PhoneSignInClient(address: URL(string: "http://127.0.0.1:1")) { "Words for \($0.kind)" }
    let calls: [(SignInError.Kind, () async throws -> Void)] = [
      (.noConnection, { _ = try await client.pictureCode(for: "139") }),
      (.noConnection, { try await client.sendCode(to: "139", pictureText: "k7wq") }),
      (.noConnection, { _ = try await client.logIn("139", code: "482913") }),
      (.notSent, { try await client.sendCode(to: "139", pictureText: "k7\0wq") }),
    ]
    for (kind, call) in calls {
      do {
        try await call()
        XCTFail("no error")
      } catch {
        XCTAssertEqual((error as? SignInError)?.kind, kind)
      }
    }
  }

  func testACancelledTaskEndsItsWait() async {
    let held = PendingCall<Int>()
    let (started, start) = AsyncStream<Void>.makeStream()
    let waiting = Task { try await held.outcome { start.finish() } }
    for await _ in started {}
    waiting.cancel()
    held.end(.success(1))  // The outcome of the call itself is dropped.
    let cancelled = await waiting.result
    XCTAssertThrowsError(try cancelled.get()) { XCTAssert($0 is CancellationError) }

    let early = PendingCall<Int>()
    let notStarted = await Task {
      withUnsafeCurrentTask { $0?.cancel() }
      return try await early.outcome {
        XCTFail("A call was started that was cancelled before")
        early.end(.success(2))
      }
    }.result
    XCTAssertThrowsError(try notStarted.get()) { XCTAssert($0 is CancellationError) }
  }
}
