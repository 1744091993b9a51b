#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "orvane/network/NetworkTool.h"
#include "orvane/network/serviceBaseURL.h"
#include "orvane/platform/MainQueue.h"
#include "orvane/platform/Platform.h"

namespace orvane {

/// The identity service in an application's unit tests: replies what the test says, without a socket or a
/// thread. All test cases of a program share the one that installed() returns.
///
///     FakeService& service = FakeService::installed();
///     service.reset();
///     service.reply(FakeService::Call::code, FakeService::Reply::refused(7, "Busy"));
///     form.sendCode();   // Calls OrvaneManager.
///     service.settle();  // Calls `finished`.
///
/// The calls may be made from any thread. Everything else is for the thread of the test.
class FakeService final : public URLSession {
 public:
  /// The calls of the service. `report` is the report about the device, after an accepted login.
  enum class Call { picture, code, login, report };

  /// A request that the application made.
  struct Request {
    Call call;                            ///< Which call it is.
    std::string body;                     ///< Compact JSON, with the members in the order of their names.
    std::optional<std::string> clientId;  ///< The client identifier, if one was set.
  };

  /// The reply to a request, or the failure of its transfer.
  class Reply {
   public:
    /// Makes a reply that accepts a call. The call for a picture receives `picture`, and a login `message`.
    static Reply accepted(Bytes picture = {}, std::string message = "ok") {
      return {
          Map{{"code", 0}, {"msg", std::move(message)}, {"data", Array(std::move(picture))}}, {}, nullptr};
    }
    /// Makes a reply that refuses a call. A login receives the code 1 in place of `code`.
    static Reply refused(std::int64_t code, std::string message) {
      return {Map{{"code", code}, {"msg", std::move(message)}}, {}, nullptr};
    }
    /// Makes the transfer fail. `code` is one of NSURLErrorDomain: -1009 without a network, -1001 after a
    /// time-out.
    static Reply failed(std::int64_t code) {
      return failed(Error{"NSURLErrorDomain", code, {{"NSErrorFailingURLStringKey", serviceBaseURL()}}});
    }
    /// Makes the transfer fail with `error`.
    static Reply failed(Error error) {
      return {std::nullopt, {}, std::make_shared<const Error>(std::move(error))};
    }
    /// Makes a reply with any body: "<html>", for example.
    static Reply text(std::string body) { return {std::nullopt, std::move(body), nullptr}; }

   private:
    friend class FakeService;
    Reply(std::optional<Map> members, std::string text, ErrorPtr error)
        : members_(std::move(members)), text_(std::move(text)), error_(std::move(error)) {}

    DataTaskResult result() const {
      if (error_) return {std::nullopt, std::nullopt, error_};
      if (!members_) return {Bytes(text_.begin(), text_.end()), HTTPResponse{200}, nullptr};
      // Writes the members as JSON.
      const auto written = NetworkTool().request(HTTPMethod::JSON_POST, serviceBaseURL(), *members_);
      return {*written->body(), HTTPResponse{200}, nullptr};
    }

    std::optional<Map> members_;
    std::string text_;
    ErrorPtr error_;
  };

  /// Returns the service. The first call installs it as the platform's session, together with the main
  /// queue that settle() runs and the other members of `platform`; later calls ignore `platform`. Stops the
  /// process if the library was used before.
  static FakeService& installed(Platform platform = {}) {
    static const auto* const shared = [&] {
      const auto* made = new std::shared_ptr<FakeService>(new FakeService);
      platform.sharedSession = *made;
      platform.mainQueue = (*made)->mainQueue_;
      installPlatform(std::move(platform));
      return made;
    }();
    return **shared;
  }

  /// Forgets all requests. Those that wait are never reported. Accepts all calls again.
  void reset() {
    cancelAllOperations();
    const std::lock_guard lock(mutex_);
    requests_.clear();
    replies_.clear();
    held_.clear();
  }

  /// Sets the reply to each `call` that settle() handles from now on.
  void reply(Call call, Reply reply) { replies_.insert_or_assign(call, std::move(reply)); }

  /// Keeps each `call` waiting until release().
  ///@{
  void hold(Call call) { held_.insert(call); }
  void release(Call call) { held_.erase(call); }
  ///@}

  /// Replies to all requests that are not held, in their order, and runs the main queue, until nothing is
  /// left to do. Callbacks run on the thread that calls this.
  void settle() {
    for (;;) {
      if (mainQueue_->runPending() > 0) continue;
      const std::optional<Waiting> next = takeNext();
      if (!next) return;
      const Reply reply = next->call ? replyTo(*next->call) : Reply::failed(-1003);
      if (next->handler) next->handler(reply.result());
    }
  }

  /// Returns the requests since reset(), in their order.
  std::vector<Request> requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
  }

  /// Records the request. One whose path is not that of a call fails with -1003, and is not recorded. The
  /// host does not matter.
  void startDataTask(URLRequest request, DataTaskHandler handler) override {
    constexpr std::pair<Call, std::string_view> paths[] = {{Call::picture, "/tenant/verify/captcha"},
                                                           {Call::code, "/tenant/getVerifyCode"},
                                                           {Call::login, "/tenant/submitVerifyCode"},
                                                           {Call::report, "/tenant/submitMobileInformation"}};
    const auto found = std::find_if(std::begin(paths), std::end(paths),
                                    [&](const auto& path) { return request.url().ends_with(path.second); });
    const std::lock_guard lock(mutex_);
    if (found == std::end(paths)) return waiting_.push_back({std::nullopt, std::move(handler)});
    const Call call = found->first;
    const Bytes body = request.body().value_or(Bytes());
    const std::string* const clientId = request.value("XRAPI-CLIENT-ID");
    requests_.push_back(
        {call, std::string(body.begin(), body.end()), clientId ? std::optional(*clientId) : std::nullopt});
    waiting_.push_back({call, std::move(handler)});
  }

  /// Drops the requests that wait.
  void cancelAllOperations() override {
    std::deque<Waiting> dropped;
    const std::lock_guard lock(mutex_);
    dropped.swap(waiting_);
  }

 private:
  struct Waiting {
    std::optional<Call> call;  // Absent if the path is not that of a call.
    DataTaskHandler handler;
  };

  FakeService() = default;

  Reply replyTo(Call call) const {
    const auto found = replies_.find(call);
    return found == replies_.end() ? Reply::accepted() : found->second;
  }

  std::optional<Waiting> takeNext() {
    const std::lock_guard lock(mutex_);
    const auto next = std::find_if(waiting_.begin(), waiting_.end(), [this](const Waiting& waiting) {
      return !waiting.call || !held_.contains(*waiting.call);
    });
    if (next == waiting_.end()) return std::nullopt;
    std::optional<Waiting> taken = std::move(*next);
    waiting_.erase(next);
    return taken;
  }

  const std::shared_ptr<MainQueue> mainQueue_ = std::make_shared<MainQueue>();
  mutable std::mutex mutex_;  // Guards the requests and those that wait.
  std::vector<Request> requests_;
  std::deque<Waiting> waiting_;
  std::map<Call, Reply> replies_;  // Without an entry the call is accepted.
  std::set<Call> held_;
};

}  // namespace orvane
