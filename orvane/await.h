#pragma once

#include "orvane/base/Export.h"  // Before <coroutine>, which has an error of its own for an older C++.

/// The three calls of a sign-in for C++20 coroutines, each in one line:
///
///     Detached signIn(std::string mobile) {
///       auto picture = co_await requestPictureCode(OrvaneManager::shareManager(), mobile);
///       if (!picture) co_return report(*picture.error);
///       show(*picture);
///     }
///
/// Not part of orvane/orvane.h. The library itself uses no coroutines.

#include <atomic>
#include <coroutine>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include "orvane/client/OrvaneManager.h"
#include "orvane/platform/onMainQueue.h"

namespace orvane {

/// The outcome of a call. Converts to true if the service accepted the call.
template <class T>
struct Outcome {
  /// Present after a success. A login has the service's message here, after a refusal too, and after any
  /// other failure the words of Platform::failureWords.
  std::optional<T> value;
  /// Null after a success.
  ErrorPtr error;

  /// Returns true after a success.
  explicit operator bool() const noexcept { return !error; }
  /// Returns the value, which must be present.
  ///@{
  T& operator*() noexcept { return *value; }
  const T& operator*() const noexcept { return *value; }
  const T* operator->() const noexcept { return &*value; }
  ///@}
};

/// The outcome of a call without a result.
template <>
struct Outcome<void> {
  /// Null after a success.
  ErrorPtr error;

  /// Returns true after a success.
  explicit operator bool() const noexcept { return !error; }
};

/// The type of a coroutine that starts at once and that no other code waits for.
///
/// It runs on the caller's thread up to its first `co_await`. While a call is in progress, the library keeps
/// the coroutine as it keeps a `finished`; where it would release `finished` without calling it, it destroys
/// the coroutine, on the main queue. An exception that leaves the coroutine ends the process by
/// std::terminate. Pass what the coroutine needs as parameters, by value: the captures of a lambda are
/// destroyed with the lambda.
struct Detached {
  /// Makes this a coroutine's type, as the language requires.
  struct promise_type {
    /// Called by the compiler at the start and the end of the coroutine.
    ///@{
    Detached get_return_object() const noexcept { return {}; }
    std::suspend_never initial_suspend() const noexcept { return {}; }
    std::suspend_never final_suspend() const noexcept { return {}; }
    void return_void() const noexcept {}
    [[noreturn]] void unhandled_exception() const noexcept { std::terminate(); }
    ///@}
  };
};

/// A call that starts when it is awaited. It resumes the coroutine on the main queue, with an Outcome. If the
/// session throws, `co_await` throws the same exception at once, on the thread that awaits the call.
///
/// Any coroutine that accepts foreign awaitables can await it, once. A coroutine of another type than
/// Detached belongs to its owner, which may destroy it on the main queue while the call is in progress. If
/// cancleAllNetwork drops the call, such a coroutine stays suspended.
template <class T, class Finished>
class [[nodiscard]] AwaitableCall {
 public:
  /// Starts the call, which calls `finished` at most once.
  using Start = std::function<void(Finished finished)>;

  /// Makes a call that `start` starts. It can be moved until it is awaited.
  ///@{
  explicit AwaitableCall(Start start) : start_(std::move(start)) {}
  AwaitableCall(AwaitableCall&&) noexcept = default;
  AwaitableCall& operator=(AwaitableCall&&) = delete;
  ///@}
  ~AwaitableCall() {
    if (pending_) pending_->takeCoroutine();
  }

  /// Called by the compiler, in this order, for `co_await`.
  ///@{
  bool await_ready() const noexcept { return false; }

  template <class Promise>
  void await_suspend(std::coroutine_handle<Promise> coroutine) {
    // The coroutine, and this object in it, may be gone before the call to start() returns.
    const Start start = std::move(start_);
    const auto pending = pending_ = std::make_shared<Pending>();
    // Destroys a Detached coroutine that was not taken when neither this function nor the callback holds it
    // any more. This function holds it because a session that throws releases the callback first.
    std::shared_ptr<void> owner;
    if constexpr (std::is_same_v<Promise, Detached::promise_type>)
      owner.reset(pending.get(), [pending](void*) { destroyOnMainQueue(pending->takeCoroutine()); });
    auto resume = onMainQueue([pending, owner](auto... results) {
      const auto suspended = pending->takeCoroutine();
      if (!suspended) return;
      pending->outcome = {std::move(results)...};
      suspended.resume();
    });
    pending->coroutine = coroutine.address();
    try {
      start(std::move(resume));
    } catch (...) {
      // The coroutine gets the exception, unless the session also called back, so that it has gone on
      // already.
      if (!pending->takeCoroutine()) std::terminate();
      throw;
    }
  }

  Outcome<T> await_resume() noexcept { return std::move(pending_->outcome); }
  ///@}

 private:
  struct Pending {
    /// Returns the coroutine to the first caller, and null to any other.
    std::coroutine_handle<> takeCoroutine() {
      void* const taken = coroutine.exchange(nullptr);
      return taken ? std::coroutine_handle<>::from_address(taken) : std::coroutine_handle<>();
    }

    std::atomic<void*> coroutine = nullptr;
    Outcome<T> outcome = {};
  };

  static void destroyOnMainQueue(std::coroutine_handle<> coroutine) {
    if (coroutine) platform().mainQueue->async([coroutine] { coroutine.destroy(); });
  }

  Start start_;
  std::shared_ptr<Pending> pending_;
};

/// Awaits OrvaneManager::requestPictureCode. The manager must exist when the call is awaited; it may be
/// destroyed before the coroutine resumes.
inline auto requestPictureCode(OrvaneManager& manager, std::string mobile) {
  using Finished = OrvaneManager::PictureCodeFinished;
  return AwaitableCall<Bytes, Finished>([&manager, mobile = std::move(mobile)](Finished finished) {
    manager.requestPictureCode(mobile, std::move(finished));
  });
}

/// Awaits OrvaneManager::requestCode, under the same conditions.
inline auto requestCode(OrvaneManager& manager, std::string mobile, std::string codeNumber) {
  using Finished = OrvaneManager::CodeFinished;
  return AwaitableCall<void, Finished>(
      [&manager, mobile = std::move(mobile), codeNumber = std::move(codeNumber)](Finished finished) {
        manager.requestCode(mobile, codeNumber, std::move(finished));
      });
}

/// Awaits OrvaneManager::requestLogin, under the same conditions. Like that call, it stops the process if the
/// transfer fails or the reply is not JSON, unless the platform has failureWords.
inline auto requestLogin(OrvaneManager& manager, std::string mobile, std::string code) {
  using Finished = OrvaneManager::LoginFinished;
  return AwaitableCall<std::string, Finished>(
      [&manager, mobile = std::move(mobile), code = std::move(code)](Finished finished) {
        manager.requestLogin(mobile, code, std::move(finished));
      });
}

}  // namespace orvane
