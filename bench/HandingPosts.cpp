#include "bench/HandingPosts.h"

#include <condition_variable>
#include <deque>
#include <future>
#include <mutex>
#include <utility>

namespace orvane::bench {
namespace {

/// Texts on their way to another thread.
class Channel {
 public:
  void put(std::string text) {
    {
      const std::lock_guard lock(mutex_);
      texts_.push_back(std::move(text));
    }
    changed_.notify_one();
  }
  std::string take() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !texts_.empty(); });
    std::string text = std::move(texts_.front());
    texts_.pop_front();
    return text;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::string> texts_;
};

}  // namespace

HandingPosts::~HandingPosts() {
  jobs_.stop();
  thread_.join();
}

void HandingPosts::post(std::size_t count, std::string_view path, const std::function<std::string()>& body,
                        const std::function<void(const std::string&)>& replied) {
  Channel bodies;
  std::promise<void> idle;
  std::size_t left = count;
  jobs_.async([&] {
    posts_.post(
        count, path, [&] { return bodies.take(); },
        [&](const std::string& reply) {
          replied(reply);
          replies_.async([&] {
            if (--left == 0) replies_.stop();
          });
        });
    idle.set_value();
  });
  for (std::size_t i = 0; i < count; ++i) bodies.put(body());
  replies_.run();
  idle.get_future().wait();
}

}  // namespace orvane::bench
