// All that threads may do to the library at the same time.

#include <atomic>
#include <gtest/gtest.h>
#include <random>

#include "orvane/host/HostSession.h"
#include "orvane/host/hostMainQueue.h"
#include "orvane/orvane.h"
#include "tests/support/LoopbackServer.h"
#include "tests/support/entries.h"

namespace orvane::test {
namespace {

using Then = LoopbackServer::Then;
using Answer = LoopbackServer::Answer;
using Request = LoopbackServer::Request;

/// The calls of one round. When the last thing that knows them is gone, the main queue stops.
struct Calls {
  std::atomic<int> begun = 0;
  std::atomic<int> completed = 0;
  std::atomic<int> dropped = 0;
  std::atomic<int> wrong = 0;
};
using CallsPtr = std::shared_ptr<Calls>;

/// Captured by a completion, of which there may be copies: counts how the call ended once all are released.
class Ticket {
 public:
  explicit Ticket(CallsPtr calls) : calls_(std::move(calls)) { ++calls_->begun; }
  Ticket(const Ticket&) = delete;
  Ticket& operator=(const Ticket&) = delete;
  ~Ticket() {
    ++(completions_ == 0 ? calls_->dropped : completions_ == 1 ? calls_->completed : calls_->wrong);
  }

  void complete(bool isAsExpected) { completions_ += isAsExpected ? 1 : 2; }

 private:
  const CallsPtr calls_;
  std::atomic<int> completions_ = 0;
};

/// Replies to the service's calls with what their number asks for, and to all else with what the path does.
Answer answer(const Request& request) {
  const std::string asked = request.head.substr(0, request.head.find("\r\n")) + request.body;
  const auto asksFor = [&](const char* what) { return asked.find(what) != asked.npos; };
  if (asksFor("reset")) return {"", Then::reset};
  if (asksFor("close")) return {"HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n{", Then::close};
  if (asksFor("garbage")) return {"garbage\r\n\r\n", Then::close};
  if (asksFor("busy")) return {reply(R"({"code":7,"msg":"Busy"})", "", "503 Busy")};
  return {reply(R"({"code":0,"msg":"ok","data":[1,2,3]})")};
}

LoopbackServer& service() {
  static auto* const server = new LoopbackServer(answer);
  return *server;
}

HostSessionConfiguration configuration() {
  return {.reroutes = {{std::string(serviceHost()), 80, "127.0.0.1", service().port()}}};
}

/// Does one thing after another, on any thread; its completions go on doing.
class Actor : public std::enable_shared_from_this<Actor> {
  static constexpr const char* moods[] = {"ok", "ok", "ok", "busy", "reset", "close", "garbage"};

  /// A completion with a result or an error.
  auto finished(std::uint32_t seed, int depth) {
    return [self = shared_from_this(), ticket = std::make_shared<Ticket>(calls_), seed, depth](
               const auto& result, const ErrorPtr& error) {
      ticket->complete(result.has_value() == !error);
      if (depth > 0) self->act(seed * 31 + 7, depth - 1);
    };
  }

 public:
  Actor(CallsPtr calls, std::shared_ptr<NetworkTool> common, bool cancels)
      : calls_(std::move(calls)), common_(std::move(common)), cancels_(cancels) {}

  void act(std::uint32_t seed, int depth) {
    const auto what = static_cast<std::uint32_t>(std::mt19937(seed)());
    const char* const mood = moods[what / 16 % std::size(moods)];
    OrvaneManager own;
    own.setAppClientId(mood);
    OrvaneManager& manager = what % 2 == 0 ? OrvaneManager::shareManager() : own;
    switch (what % 16) {
      case 0:
      case 1:
        return manager.requestPictureCode(mood, finished(seed, depth));
      case 2:
      case 3:
        return manager.requestCode(mood, "c", [either = finished(seed, depth)](const ErrorPtr& error) {
          either(error ? std::nullopt : std::optional(true), error);
        });
      case 4:
      case 5:  // A login that fails would stop the process.
        return manager.requestLogin(
            what & 16 ? "ok" : "busy", "c",
            [either = finished(seed, depth)](const auto& message, const ErrorPtr& error) {
              either(error ? std::nullopt : message, error);
            });
      case 6:
        return common_->requestJSON(HTTPMethod::GET, "", {}, finished(seed, depth));
      case 7: {
        NetworkTool brief;
        brief.setSession(std::make_shared<HostSession>());
        brief.addHeader({{"X-Mood", mood}});
        for (const HTTPMethod method : {HTTPMethod::GET, HTTPMethod::POST, HTTPMethod::JSON_POST})
          brief.requestJSON(method, service().url("/") + mood, Parameters{{"k", "v"}}, finished(seed, depth));
        return;
      }
      case 8:
        return common_->setSession(std::make_shared<HostSession>(configuration()));
      case 9:
        if (cancels_) NetworkTool().cancleAllNetwork();
        return;
      case 10:
        if (cancels_) common_->cancleAllNetwork();
        return;
      case 11:
        return common_->demoGCDGroup();
      default:
        common_->addHeader({{"X-Mood", mood}, {"X-Seed", std::to_string(seed)}});
        return common_->requestJSON(HTTPMethod::POST, service().url("/") + mood, Parameters{{"k", mood}},
                                    finished(seed, depth));
    }
  }

 private:
  const CallsPtr calls_;
  const std::shared_ptr<NetworkTool> common_;
  const bool cancels_;
};

class Torture : public testing::TestWithParam<bool> {
 protected:
  static void SetUpTestSuite() {
    installPlatform({.sharedSession = std::make_shared<HostSession>(configuration())});
    NetworkTool().requestJSON(HTTPMethod::GET, service().url(), {}, [](auto...) { hostMainQueue().stop(); });
    hostMainQueue().run();
  }
};

TEST_P(Torture, EveryCallCompletesOnceOrWasCancelled) {
  constexpr int threadCount = 8;
  constexpr int actions = 400;
  const auto threadsBefore = entries("/proc/self/task");
  Calls counts;
  const auto stopMainQueue = [](Calls*) { hostMainQueue().stop(); };
  std::vector<std::thread> drivers;
  {
    const auto actor = std::make_shared<Actor>(CallsPtr(&counts, stopMainQueue),
                                               std::make_shared<NetworkTool>(), GetParam());
    for (std::uint32_t driver = 0; driver < threadCount; ++driver) {
      drivers.emplace_back([actor, driver] {
        for (std::uint32_t i = 0; i < actions; ++i) actor->act(driver * actions + i, 3);
      });
    }
  }
  hostMainQueue().run();
  for (std::thread& driver : drivers) driver.join();
  EXPECT_GT(counts.begun, threadCount * actions);
  EXPECT_EQ(counts.completed + counts.dropped, counts.begun);
  EXPECT_EQ(counts.wrong, 0);
  if (!GetParam()) {
    EXPECT_EQ(counts.dropped, 0);
  }
  std::printf("%d calls, %d of them dropped\n", counts.begun.load(), counts.dropped.load());
  while (entries("/proc/self/task") > threadsBefore) std::this_thread::yield();
}

INSTANTIATE_TEST_SUITE_P(Rounds, Torture, testing::Bool(), [](const auto& round) {
  return round.param ? "WithCancellations" : "WithoutCancellations";
});

}  // namespace
}  // namespace orvane::test
