#include "bindings/c/include/orvane/orvane_c.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <type_traits>

#include "orvane/base/decodeUTF8.h"
#include "orvane/base/fatal.h"
#include "orvane/network/networkToolError.h"
#include "orvane/orvane.h"
#include "orvane/platform/PostingQueue.h"
#include "orvane/platform/makeDefaultPlatform.h"

#include "bindings/c/CountedSession.h"

namespace orvane {
namespace {

// Promised: these structs keep their layout, for programs that were compiled earlier. A call that needs other
// members is a new function with a struct of its own.
static_assert(sizeof(void*) != 8 || (sizeof(orvane_setup) == 32 && sizeof(orvane_failure) == 32));
static_assert(ORVANE_OTHER == hashValue(ErrorKind::other) && ORVANE_REFUSED == hashValue(ErrorKind::refused));

std::atomic<CountedSession*> preparedSession = nullptr;

bool isUTF8(std::string_view text) {
  for (std::size_t at = 0; at < text.size();)
    if (!decodeUTF8(text, at)) return false;
  return true;
}

/// Returns an argument of the function `call`, or stops the process if it is not a string.
std::string argument(const char* string, const char* call) {
  if (!string) fatal(std::string(call).append(": a string is null"));
  if (!isUTF8(string)) fatal(std::string(call).append(": a string is not UTF-8"));
  return string;
}

/// An error as C sees it. Valid as long as this object.
class Failure {
 public:
  explicit Failure(const Error& error)
      : domain_(original(error).domain),
        message_(errorMessage(error)),
        failure_{static_cast<orvane_kind>(errorKind(error)), original(error).code, domain_.c_str(),
                 message_.c_str()} {}
  Failure(const Failure&) = delete;
  Failure& operator=(const Failure&) = delete;

  operator const orvane_failure*() const { return &failure_; }

 private:
  static const Error& original(const Error& error) { return error.cause ? *error.cause : error; }

  const std::string domain_;
  const std::string message_;
  const orvane_failure failure_;
};

/// A call's `finished` with its context, which it releases when it is destroyed.
template <class Finished>
class Outcome {
 public:
  Outcome(Finished finished, void* context, void (*release)(void*))
      : finished_(finished),
        context_(
            context, release ? release : [](void*) {}) {}

  /// Calls `finished`, and releases the context. Called at most once.
  template <class... Results>
  void report(const ErrorPtr& error, Results... results) {
    const auto context = std::move(context_);
    if (!finished_) return;
    if (!error) return finished_(results..., nullptr, context.get());
    finished_(results..., Failure(*error), context.get());
  }

 private:
  Finished finished_;
  std::shared_ptr<void> context_;
};

/// Returns the shared manager for the function `call`, or stops the process if orvane_prepare() was not
/// called.
OrvaneManager& preparedManager(const char* call) {
  if (!preparedSession.load()) fatal(std::string(call).append(": orvane_prepare() was not called"));
  return OrvaneManager::shareManager();
}

/// Makes a call whose outcome `callback` receives: also if the session throws, because it has no thread.
template <class Finished, class Start>
void start(const Finished& callback, const Start& makeCall) {
  try {
    makeCall();
  } catch (const std::system_error&) {
    if constexpr (std::is_same_v<Finished, OrvaneManager::CodeFinished>)
      callback(networkToolError(requestNotBuilt));
    else
      callback({}, networkToolError(requestNotBuilt));
  }
}

std::string failureWords(const orvane_setup& setup, const Error& cause) {
  if (!setup.failure_words) return errorMessage(cause);
  const std::unique_ptr<char, void (*)(void*)> words(setup.failure_words(Failure(cause), setup.context),
                                                     std::free);
  return words ? argument(words.get(), "failure_words") : errorMessage(cause);
}

}  // namespace
}  // namespace orvane

using namespace orvane;

void orvane_prepare(const orvane_setup* given) noexcept {
  if (!given || !given->post) fatal("orvane_prepare: there is no function that posts");
  const orvane_setup setup = *given;
  const auto session = std::make_shared<CountedSession>(makeDefaultPlatform().sharedSession);
  CountedSession* none = nullptr;
  if (!preparedSession.compare_exchange_strong(none, session.get())) fatal("orvane_prepare: called again");
  Platform platform{.sharedSession = session};
  if (setup.address) {
    platform.sharedSession =
        std::make_shared<ReaddressedSession>(session, argument(setup.address, "orvane_prepare"));
  }
  platform.mainQueue = std::make_shared<PostingQueue>(
      [setup](void (*run)(void*), void* work) { setup.post(run, work, setup.context); });
  platform.failureWords = [setup](const Error& cause) { return failureWords(setup, cause); };
  installPlatform(std::move(platform));
}

void orvane_set_client_id(const char* client_id) noexcept {
  constexpr const char* call = "orvane_set_client_id";
  OrvaneManager& manager = preparedManager(call);
  manager.setClientId(client_id ? std::optional(argument(client_id, call)) : std::nullopt);
}

void orvane_request_picture_code(const char* mobile, orvane_picture_finished finished, void* context,
                                 void (*release)(void* context)) noexcept {
  constexpr const char* call = "orvane_request_picture_code";
  OrvaneManager& manager = preparedManager(call);
  const OrvaneManager::PictureCodeFinished callback = onMainQueue(
      [outcome = Outcome(finished, context, release)](std::optional<Bytes> bytes, ErrorPtr error) mutable {
        outcome.report(error, bytes ? bytes->data() : nullptr, bytes ? bytes->size() : 0);
      });
  start(callback, [&] { manager.requestPictureCode(argument(mobile, call), callback); });
}

void orvane_request_code(const char* mobile, const char* picture_text, orvane_code_finished finished,
                         void* context, void (*release)(void* context)) noexcept {
  constexpr const char* call = "orvane_request_code";
  OrvaneManager& manager = preparedManager(call);
  const OrvaneManager::CodeFinished callback = onMainQueue(
      [outcome = Outcome(finished, context, release)](ErrorPtr error) mutable { outcome.report(error); });
  start(callback,
        [&] { manager.requestCode(argument(mobile, call), argument(picture_text, call), callback); });
}

void orvane_request_login(const char* mobile, const char* code, orvane_login_finished finished, void* context,
                          void (*release)(void* context)) noexcept {
  constexpr const char* call = "orvane_request_login";
  OrvaneManager& manager = preparedManager(call);
  const OrvaneManager::LoginFinished callback =
      onMainQueue([outcome = Outcome(finished, context, release)](std::optional<std::string> message,
                                                                  ErrorPtr error) mutable {
        outcome.report(error, message ? message->c_str() : nullptr);
      });
  start(callback, [&] { manager.requestLogin(argument(mobile, call), argument(code, call), callback); });
}

int orvane_wait_until_idle(int64_t milliseconds) noexcept {
  preparedManager("orvane_wait_until_idle");
  const std::int64_t longest = std::chrono::milliseconds(std::chrono::hours(24)).count();
  return preparedSession.load()->waitUntilIdle(
      std::chrono::milliseconds(std::clamp<std::int64_t>(milliseconds, 0, longest)));
}
