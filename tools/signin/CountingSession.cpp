#include "tools/signin/CountingSession.h"

#include <condition_variable>
#include <mutex>
#include <utility>

namespace signin {

class CountingSession::Count {
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

CountingSession::CountingSession(std::shared_ptr<orvane::URLSession> inner, std::function<void()> replied)
    : inner_(std::move(inner)), replied_(std::move(replied)), count_(std::make_shared<Count>()) {}

void CountingSession::startDataTask(orvane::URLRequest request, orvane::DataTaskHandler handler) {
  count_->change(1);
  // Goes with the handler, which is released when it was called and also when it was dropped.
  std::shared_ptr<Count> ticket(count_.get(), [count = count_](Count*) { count->change(-1); });
  inner_->startDataTask(std::move(request), [handler = std::move(handler), replied = replied_,
                                             ticket = std::move(ticket)](orvane::DataTaskResult result) {
    replied();
    handler(std::move(result));
  });
}

bool CountingSession::waitUntilIdle(std::chrono::milliseconds limit) const {
  return count_->awaitZero(limit);
}

}  // namespace signin
