#pragma once

/// The three calls of a sign-in for C++20 coroutines, each in one line:
///
///     Detached signIn(std::string mobile) {
///       auto picture = co_await requestPictureCode(OrvaneManager::shareManager(), mobile);
///       if (!picture) co_return report(*picture.error);
///       show(*picture);
///     }
///
/// Not part of orvane/orvane.h. The library itself uses no coroutines.

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
  /// Present after a success. A login has the service's message here, after a refusal too.
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

/// The type of a coroutine that starts at once and that nothing waits for.
///
/// It runs on the caller's thread up to its first `co_await`. While one of the calls below is under way, the library
/// keeps the coroutine as it keeps a `finished`: where `finished` would be dropped without having been called, the
/// coroutine is destroyed. An exception out of it ends the process by std::terminate. Pass what it needs as parameters,
/// by value: a lambda's captures go with the lambda.
struct Detached {
  /// What the language asks of a coroutine's type.
  struct promise_type {
    /// The members that the compiler uses.
    ///@{
    Detached get_return_object() const noexcept { return {}; }
    std::suspend_never initial_suspend() const noexcept { return {}; }
    std::suspend_never final_suspend() const noexcept { return {}; }
    void return_void() const noexcept {}
    [[noreturn]] void unhandled_exception() const noexcept { std::terminate(); }
    ///@}
  };
};

/// A call that starts once it is awaited, and then resumes the coroutine with an Outcome on the main queue, whatever it
/// came to.
///
/// Any coroutine that takes foreign awaitables can await it, once. One of another type than Detached belongs to its
/// owner, who may destroy it on the main queue while the call is under way. If the call is dropped by cancleAllNetwork,
/// such a coroutine stays suspended.
template <class T, class Finished>
class [[nodiscard]] AwaitableCall {
 public:
  /// Starts the call; `finished` is to be called once.
  using Start = std::function<void(Finished finished)>;

  /// A call that `start` starts. It can be moved until it is awaited.
  ///@{
  explicit AwaitableCall(Start start) : start_(std::move(start)) {}
  AwaitableCall(AwaitableCall&&) noexcept = default;
  AwaitableCall& operator=(AwaitableCall&&) = delete;
  ///@}
  ~AwaitableCall() {
    if (pending_) pending_->coroutine = nullptr;
  }

  /// The members that the compiler uses.
  ///@{
  bool await_ready() const noexcept { return false; }

  template <class Promise>
  void await_suspend(std::coroutine_handle<Promise> coroutine) {
    pending_ = std::make_shared<Pending>(Pending{coroutine, {}});
    constexpr bool isDetached = std::is_same_v<Promise, Detached::promise_type>;
    auto resume = [pending = pending_,
                   owner = Owner(isDetached ? coroutine.address() : nullptr)](auto... results) mutable {
      pending->outcome = {std::move(results)...};
      static_cast<void>(owner.release());
      if (const auto suspended = std::exchange(pending->coroutine, nullptr)) suspended.resume();
    };
    // The coroutine, and this object in it, may be gone before the call to start() returns.
    const Start start = std::move(start_);
    start(onMainQueue(std::move(resume)));
  }

  Outcome<T> await_resume() noexcept { return std::move(pending_->outcome); }
  ///@}

 private:
  struct Pending {
    std::coroutine_handle<> coroutine;  // Null once it was resumed or destroyed.
    Outcome<T> outcome;
  };
  struct Destroy {
    void operator()(void* coroutine) const { std::coroutine_handle<>::from_address(coroutine).destroy(); }
  };
  using Owner = std::unique_ptr<void, Destroy>;

  Start start_;
  std::shared_ptr<Pending> pending_;
};

/// Awaits OrvaneManager::requestPictureCode. The manager must exist when the call is awaited, and not longer.
inline auto requestPictureCode(OrvaneManager& manager, std::string mobile) {
  using Finished = OrvaneManager::PictureCodeFinished;
  return AwaitableCall<Bytes, Finished>([&manager, mobile = std::move(mobile)](Finished finished) {
    manager.requestPictureCode(mobile, std::move(finished));
  });
}

/// Awaits OrvaneManager::requestCode; likewise.
inline auto requestCode(OrvaneManager& manager, std::string mobile, std::string codeNumber) {
  using Finished = OrvaneManager::CodeFinished;
  return AwaitableCall<void, Finished>(
      [&manager, mobile = std::move(mobile), codeNumber = std::move(codeNumber)](Finished finished) {
        manager.requestCode(mobile, codeNumber, std::move(finished));
      });
}

/// Awaits OrvaneManager::requestLogin; likewise. Stops the process if the request fails, as that does.
inline auto requestLogin(OrvaneManager& manager, std::string mobile, std::string code) {
  using Finished = OrvaneManager::LoginFinished;
  return AwaitableCall<std::string, Finished>(
      [&manager, mobile = std::move(mobile), code = std::move(code)](Finished finished) {
        manager.requestLogin(mobile, code, std::move(finished));
      });
}

}  // namespace orvane
