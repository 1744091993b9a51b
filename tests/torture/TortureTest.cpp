// All that threads may do to the library at the same time, and what the process holds after it.

#include <atomic>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>

#include "orvane/host/HostSession.h"
#include "orvane/host/hostMainQueue.h"
#include "orvane/orvane.h"
#include "tests/support/LoopbackServer.h"
#include "tests/support/allocated.h"
#include "tests/support/entries.h"

namespace orvane::test {
namespace {

using Then = LoopbackServer::Then;
using Answer = LoopbackServer::Answer;
using Request = LoopbackServer::Request;

const std::string good = R"({"code":0,"msg":"ok","data":[1,2,3]})";
const std::string begun = "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n{";
const std::string lost = "NSURLErrorDomain (-1005)";

/// What the service answers to a request that names the mood, and what a call then comes to.
struct Mood {
  std::string name;
  Answer answer;
  std::string outcome = "done";
};

/// Never destroyed: the server reads them to the end of the process.
const std::vector<Mood>& moods = *new std::vector<Mood>{
    {"ok", {reply(good)}},
    {"busy", {reply(R"({"code":7,"msg":"Busy"})", "", "503 Busy")}, "Busy (7)"},
    {"chunk", {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n24\r\n" + good + "\r\n0\r\n\r\n"}},
    {"moved", {reply("", "Location: /ok\r\n", "307 Moved")}},
    {"circle", {reply("", "Location: /circle\r\n", "307 Moved")}, "NSURLErrorDomain (-1007)"},
    {"page", {reply("<html>")}, "com.brovent.error (-1)"},
    {"large", {reply(std::string(200'000, ' ') + good)}, "NSURLErrorDomain (-1103)"},
    {"zipped", {reply(good, "Content-Encoding: gzip\r\n")}, "NSURLErrorDomain (-1015)"},
    {"reset", {"", Then::reset}, lost},
    {"torn", {begun, Then::reset}, lost},
    {"close", {begun, Then::close}, lost},
    {"garbage", {"garbage\r\n\r\n", Then::close}, "NSURLErrorDomain (-1017)"},
};

/// The path says more than the body, which stays the same after a redirect.
Answer answer(const Request& request) {
  for (const std::string& asked : {request.head.substr(0, request.head.find("\r\n")), request.body})
    for (const Mood& mood : moods)
      if (asked.find(mood.name) != asked.npos) return mood.answer;
  return moods[0].answer;
}

LoopbackServer& service() {
  static auto* const server = new LoopbackServer(answer, LoopbackServer::Requests::forgotten);
  return *server;
}

HostSessionConfiguration configuration() {
  return {.maximumBodySize = 100'000,
          .reroutes = {{std::string(serviceHost()), 80, "127.0.0.1", service().port()}}};
}

/// Counts the calls of all rounds. In each round, when the last thing that knows them is gone, the main queue
/// stops.
struct Calls {
  std::atomic<int> completed = 0;
  std::atomic<int> dropped = 0;
};
using CallsPtr = std::shared_ptr<Calls>;

/// Captured by a completion, of which there may be copies: counts how the call ended once all are released.
struct Ticket {
  explicit Ticket(CallsPtr ofAll) : calls(std::move(ofAll)) {}
  ~Ticket() {
    EXPECT_LE(completions, 1);
    ++(completions == 0 ? calls->dropped : calls->completed);
  }

  const CallsPtr calls;
  std::atomic<int> completions = 0;
};

/// Does one thing after another, on any thread; its completions go on doing.
class Actor : public std::enable_shared_from_this<Actor> {
  /// Returns a completion for a call that must have this outcome.
  auto finished(std::uint32_t seed, int depth, const std::string& expected) {
    return [self = shared_from_this(), ticket = std::make_shared<Ticket>(calls_), seed, depth, expected](
               const auto& result, const ErrorPtr& error) {
      ++ticket->completions;
      EXPECT_EQ(error ? errorDescription(*error) : result ? "done" : "nothing", expected);
      if (depth > 0) self->act(seed * 31 + 7, depth - 1);
    };
  }

 public:
  Actor(CallsPtr calls, std::shared_ptr<NetworkTool> common, bool cancels)
      : calls_(std::move(calls)), common_(std::move(common)), cancels_(cancels) {}

  void act(std::uint32_t seed, int depth) {
    const auto what = static_cast<std::uint32_t>(std::mt19937(seed)());
    const std::size_t choice = what / 16 % 32;
    const Mood& mood = moods[choice < moods.size() ? choice : 0];
    const std::string ofTool = mood.name == "busy" ? "done" : mood.outcome;  // A tool does not judge.
    OrvaneManager own;
    own.setAppClientId(mood.name);
    OrvaneManager& manager = what % 2 == 0 ? OrvaneManager::shareManager() : own;
    switch (what % 16) {
      case 0:
      case 1:
        return manager.requestPictureCode(mood.name, finished(seed, depth, mood.outcome));
      case 2:
      case 3:
        return manager.requestCode(mood.name, "c",
                                   [either = finished(seed, depth, mood.outcome)](const ErrorPtr& error) {
                                     either(std::optional(true), error);
                                   });
      case 4:
      case 5: {  // A login that fails would stop the process.
        const bool isBusy = (what & 16) != 0;
        return manager.requestLogin(moods[isBusy ? 1 : 0].name, "c",
                                    finished(seed, depth, isBusy ? "Busy (1)" : "done"));
      }
      case 6: {
        const std::pair<const char*, const char*> rows[] = {
            {"", "com.brovent.error (-1)"},
            {"nowhere", "NSURLErrorDomain (-1002)"},
            {"http://127.0.0.1:1/", "NSURLErrorDomain (-1004)"}};
        const auto& [url, outcome] = rows[choice % std::size(rows)];
        return common_->requestJSON(HTTPMethod::GET, url, {}, finished(seed, depth, outcome));
      }
      case 7: {
        NetworkTool brief;
        brief.setSession(std::make_shared<HostSession>(configuration()));
        brief.addHeader({{"X-Mood", mood.name}});
        for (const HTTPMethod method : {HTTPMethod::GET, HTTPMethod::POST, HTTPMethod::JSON_POST})
          brief.requestJSON(method, service().url("/") + mood.name, Parameters{{"k", "v"}},
                            finished(seed, depth, ofTool));
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
        common_->addHeader({{"X-Mood", mood.name}, {"X-Seed", std::to_string(seed)}});
        return common_->requestJSON(HTTPMethod::POST, service().url("/") + mood.name,
                                    Parameters{{"k", mood.name}}, finished(seed, depth, ofTool));
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

  /// Returns once all calls of the round are over, and the threads and connections of its sessions gone.
  void play(int round) {
    const auto stopMainQueue = [](Calls*) { hostMainQueue().stop(); };
    std::vector<std::thread> drivers;
    {
      const auto actor = std::make_shared<Actor>(CallsPtr(&calls, stopMainQueue),
                                                 std::make_shared<NetworkTool>(), GetParam());
      for (int driver = 0; driver < threadCount; ++driver) {
        drivers.emplace_back([actor, first = (round * threadCount + driver) * actions] {
          for (int i = 0; i < actions; ++i) actor->act(static_cast<std::uint32_t>(first + i), 3);
        });
      }
    }
    hostMainQueue().run();
    for (std::thread& driver : drivers) driver.join();
    constexpr int kept = 2 * 6;  // Connections of the shared session, by two names of the service.
    while (entries("/proc/self/task") > threads) std::this_thread::yield();
    while (entries("/proc/self/fd") > descriptors + 2 * kept)
      std::this_thread::yield();  // Both ends are here.
  }

  static constexpr int threadCount = 8;
  static constexpr int actions = 400;
  const std::ptrdiff_t threads = entries("/proc/self/task");
  const std::ptrdiff_t descriptors = entries("/proc/self/fd");
  Calls calls;
};

TEST_P(Torture, EveryCallCompletesOnceOrWasCancelled) {
  const char* const given = std::getenv("ORVANE_TORTURE_ROUNDS");
  const int rounds = given ? std::atoi(given) : 2;
  std::size_t afterFirst = 0;
  for (int round = 0; round < rounds; ++round) {
    play(round);
    if (round == 0) afterFirst = allocated();
  }
  EXPECT_GT(calls.completed + calls.dropped, rounds * threadCount * actions);
  EXPECT_TRUE(GetParam() || calls.dropped == 0);
  const std::size_t inTheEnd = allocated();
  EXPECT_LE(inTheEnd, afterFirst + (1 << 20));  // Kept connections and handles make up to 400 KB.
  std::printf("%d calls, %d of them dropped; %zu KB allocated after the first round, %zu KB in the end\n",
              calls.completed + calls.dropped, calls.dropped.load(), afterFirst >> 10, inTheEnd >> 10);
}

INSTANTIATE_TEST_SUITE_P(Rounds, Torture, testing::Bool(), [](const auto& round) {
  return round.param ? "WithCancellations" : "WithoutCancellations";
});

}  // namespace
}  // namespace orvane::test
