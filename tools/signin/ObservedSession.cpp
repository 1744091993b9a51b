#include "tools/signin/ObservedSession.h"

#include <condition_variable>
#include <mutex>
#include <utility>

#include "tools/signin/Terminal.h"
#include "tools/signin/Trace.h"

namespace signin {

class ObservedSession::Count {
 public:
  void change(int by) {
    {
      const std::lock_guard lock(mutex_);
      underWay_ += by;
    }
    changed_.notify_all();
  }

  bool awaitZero(std::chrono::milliseconds limit) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, limit, [this] { return underWay_ == 0; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  int underWay_ = 0;
};

ObservedSession::ObservedSession(orvane::HostSessionConfiguration configuration,
                                 std::shared_ptr<const Secrets> traceSecrets)
    : configuration_(std::move(configuration)),
      inner_(configuration_),
      traceSecrets_(std::move(traceSecrets)),
      count_(std::make_shared<Count>()) {}

void ObservedSession::startDataTask(orvane::URLRequest request, orvane::DataTaskHandler handler) {
  using Clock = std::chrono::steady_clock;
  if (traceSecrets_) writeError(timeText() + "\n" + requestLine(request, configuration_, *traceSecrets_));
  count_->change(1);
  // Goes with the handler, which is released when it was called and also when it was dropped.
  std::shared_ptr<Count> ticket(count_.get(), [count = count_](Count*) { count->change(-1); });
  auto observed = [handler = std::move(handler), ticket = std::move(ticket), secrets = traceSecrets_,
                   url = request.url(), start = Clock::now()](orvane::DataTaskResult result) {
    hideWaiting();
    if (secrets) {
      const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
      writeError(timeText() + " " + replyLine(url, result, took, *secrets));
    }
    handler(std::move(result));
  };
  inner_.startDataTask(std::move(request), std::move(observed));
}

bool ObservedSession::waitUntilIdle(std::chrono::milliseconds limit) const {
  return count_->awaitZero(limit);
}

}  // namespace signin
