// Many tiny calls that are started at once.

#include <atomic>
#include <deque>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include "bench/CurlPost.h"
#include "bench/Rounds.h"
#include "bench/Server.h"
#include "bench/Service.h"
#include "bench/byHand.h"
#include "bench/byLibrary.h"
#include "orvane/host/hostMainQueue.h"

namespace orvane::bench {
namespace {

/// Makes calls for a code on libcurl's multi interface, as an application does whose main thread must not
/// wait: hands each body to a thread, which reads the reply by nlohmann and hands the message to the main
/// queue. Has as many easy handles as the library has connections to a host.
class HandedMulti {
 public:
  explicit HandedMulti(std::uint16_t port) {
    for (int i = 0; i < 6; ++i) {
      Slot& slot = slots_.emplace_back(port);
      curl_easy_setopt(slot.post.handle(), CURLOPT_PRIVATE, &slot);
      idle_.push_back(&slot);
    }
    thread_ = std::thread([this] { run(); });
  }
  HandedMulti(const HandedMulti&) = delete;
  HandedMulti& operator=(const HandedMulti&) = delete;
  ~HandedMulti() {
    async([this] { isStopping_ = true; });
    thread_.join();
  }

  /// Makes `count` calls at once, and returns when the main queue has all messages.
  void requestCodes(std::size_t count) {
    left_ = count;
    for (std::size_t i = 0; i < count; ++i)
      async([this, body = codeBody()]() mutable { waiting_.push_back(std::move(body)); });
    hostMainQueue().run();
  }

 private:
  struct Slot {
    explicit Slot(std::uint16_t port) : post(port) {}
    CurlPost post;
    std::string body;
  };

  /// Runs `work` on the thread. Wakes it only if it has looked for work since the last time.
  void async(Work work) {
    inbox_.async(std::move(work));
    if (!isWoken_.exchange(true)) curl_multi_wakeup(multi_.get());
  }

  void run() {
    while (!isStopping_) {
      isWoken_ = false;
      inbox_.runPending();
      for (; !idle_.empty() && !waiting_.empty(); idle_.pop_back(), waiting_.pop_front()) {
        Slot& slot = *idle_.back();
        slot.body = std::move(waiting_.front());
        slot.post.prepare(codePath, slot.body);
        curl_multi_add_handle(multi_.get(), slot.post.handle());
      }
      int count = 0;
      curl_multi_perform(multi_.get(), &count);
      const CURLMsg* message = curl_multi_info_read(multi_.get(), &count);
      if (!message) curl_multi_poll(multi_.get(), nullptr, 0, 1000, nullptr);
      for (; message; message = curl_multi_info_read(multi_.get(), &count)) finish(*message);
    }
  }

  void finish(const CURLMsg& message) {
    if (message.data.result != CURLE_OK) throw std::runtime_error("curl multi: no reply");
    CURL* const handle = message.easy_handle;
    Slot* slot = nullptr;
    curl_easy_getinfo(handle, CURLINFO_PRIVATE, &slot);
    curl_multi_remove_handle(multi_.get(), handle);
    hostMainQueue().async([this, text = readMessage(slot->post.reply())] {
      if (--left_ == 0) hostMainQueue().stop();
    });
    idle_.push_back(slot);
  }

  std::size_t left_ = 0;  // Used on the main queue only.
  MainQueue inbox_;
  std::atomic<bool> isWoken_ = false;
  const std::unique_ptr<CURLM, CURLMcode (*)(CURLM*)> multi_{curl_multi_init(), curl_multi_cleanup};
  std::deque<Slot> slots_;
  // These are used on the thread only.
  std::vector<Slot*> idle_;
  std::deque<std::string> waiting_;
  bool isStopping_ = false;
  std::thread thread_;
};

}  // namespace
}  // namespace orvane::bench

int main() {
  using namespace orvane::bench;
  const Server server;
  pinTo(0);
  installBenchPlatform(server.port());
  HandedMulti multi(server.port());

  const auto byHand = [&multi](std::size_t count) { multi.requestCodes(count); };
  // Makes 10,000 calls in a round, `count` at once.
  const auto atOnce = [](std::size_t count, auto request) {
    return [=] { return costOf(10'000 / count, count, [=] { request(count); }); };
  };
  const std::vector<Costs> costs =
      takeTurns({atOnce(64, requestCodes), atOnce(1'000, requestCodes), atOnce(1'000, byHand),
                 atOnce(10'000, requestCodes), atOnce(10'000, byHand)});
  const char* const peer = "curl multi, handed over";
  printRows("each of 1,000 calls at once", costs[1].wall,
            {{peer, costs[2].wall, {Goal::Ratio::speedup, 0.75}}});
  printRows("each of 10,000 calls at once", costs[3].wall,
            {{peer, costs[4].wall, {Goal::Ratio::speedup}},
             {"the library, 64 at once", costs[0].wall, {Goal::Ratio::share, 1.25}}});
}
