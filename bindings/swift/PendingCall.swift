import Foundation

/// A call that a task awaits. The first of its outcome and the task's cancellation ends the wait.
///
/// `@unchecked` is true because the lock guards `state`.
final class PendingCall<Success: Sendable>: @unchecked Sendable {
  private enum State {
    case new
    case waiting(CheckedContinuation<Success, Error>)
    case ended
  }

  private let lock = NSLock()
  private var state = State.new

  /// Starts the call by `start`, and waits.
  func outcome(of start: @Sendable () -> Void) async throws -> Success {
    try await withTaskCancellationHandler {
      try await withCheckedThrowingContinuation { continuation in
        if wait(continuation) { start() }
      }
    } onCancel: {
      end(.failure(CancellationError()))
    }
  }

  /// Ends the wait. Only the first end counts.
  func end(_ outcome: Result<Success, Error>) {
    lock.lock()
    let before = state
    state = .ended
    lock.unlock()
    if case .waiting(let continuation) = before { continuation.resume(with: outcome) }
  }

  /// Returns false, and ends the wait, if the task was cancelled before.
  private func wait(_ continuation: CheckedContinuation<Success, Error>) -> Bool {
    lock.lock()
    let isNew = if case .new = state { true } else { false }
    if isNew { state = .waiting(continuation) }
    lock.unlock()
    if !isNew { continuation.resume(throwing: CancellationError()) }
    return isNew
  }
}
