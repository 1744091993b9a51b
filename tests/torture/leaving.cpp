// Leaves its process, with exit code 7, while calls of every kind are under way.
//
// leaving WAY CALLS PORT: ends the process in the named way after that many calls have ended. PORT is a
// server on loopback that resets requests for "/reset", answers "/good" and holds all others. The process
// writes an empty line when it starts to end. A signal kills it a minute after its start.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <iterator>
#include <string>
#include <string_view>
#include <thread>
#include <unistd.h>
#include <vector>

#include "orvane/host/HostSession.h"
#include "orvane/host/hostMainQueue.h"

namespace orvane {
namespace {

constexpr int exitCode = 7;

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds patience(500);  // The library's, at the end, with a running handler.
Clock::time_point end;                              // When the process began to end.

/// What an application has beside its calls: a static that its handlers use, made before the library is.
std::atomic<bool> isGone = false;
struct Static {
  ~Static() {
    // Later than that the machine was too busy for the handler, or it never returns, and was given up.
    if (Clock::now() - end >= patience) return;
    // Time for a handler to come.
    for (int times = 0; times < 1'000'000; ++times) isGone = true;
  }
} applicationsStatic;

std::string server;
std::vector<std::shared_ptr<HostSession>> sessions;
std::atomic<int> over = 0;
std::atomic<bool> mayLeave = false;
int limit = 0;
void (*atLimit)() = nullptr;  // On a session's thread.

void announceEnd() {
  end = Clock::now();
  static_cast<void>(!write(STDOUT_FILENO, "\n", 1));
}

[[noreturn]] void leave() {
  announceEnd();
  std::exit(exitCode);
}

/// Starts a call that starts its successor.
void call(const std::shared_ptr<HostSession>& session, const std::string& url) {
  session->startDataTask(URLRequest(url), [weak = std::weak_ptr(session), url](const auto&) {
    for (int times = 0; times < 1000; ++times) {
      if (isGone) std::abort();
    }
    if (const auto locked = weak.lock()) call(locked, url);
    ++over;
    over.notify_all();
    if (over > limit && mayLeave.exchange(false)) atLimit();
  });
}

void startCalls() {
  for (int i = 0; i < 3; ++i) {
    sessions.push_back(std::make_shared<HostSession>());
    for (const char* path : {"reset", "reset", "good", "good", "hold"}) call(sessions.back(), server + path);
    for (const char* url : {"http://name.invalid/", "nowhere"}) call(sessions.back(), url);
  }
  call(sessions.front(), "https" + server.substr(4));
}

void awaitLimit() {
  for (int now = over; now < limit; now = over) over.wait(now);
}

/// Uses the library while the process ends.
struct LateCaller {
  ~LateCaller() {
    sessions.back()->cancelAllOperations();
    call(sessions.back(), server + "good");
    sessions.clear();
    call(std::make_shared<HostSession>(), server + "good");
  }
};

struct Way {
  std::string_view name;
  void (*atLimit)();
  void (*inMain)();
};

constexpr auto nothing = [] {};
constexpr auto runMainQueue = [] { hostMainQueue().run(); };

constexpr Way ways[] = {
    {"return", nothing, awaitLimit},
    {"exit_in_a_handler", leave, runMainQueue},
    {"exit_on_the_main_queue", [] { hostMainQueue().async(leave); }, runMainQueue},
    {"exit_on_another_thread", [] { std::thread(leave).detach(); }, runMainQueue},
    {"handler_that_never_returns", [] { hostMainQueue().stop(), std::atomic<bool>(false).wait(false); },
     runMainQueue},
    {"sessions_destroyed", nothing, [] { awaitLimit(), sessions.clear(); }},
    {"calls_in_a_destructor", nothing,
     [] {
       awaitLimit();
       static const LateCaller caller;
     }},
};

}  // namespace
}  // namespace orvane

// Asked by the thread sanitizer: curl may not have come to joining the thread of a look-up that is over.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options() {
  return "report_thread_leaks=0:atexit_sleep_ms=0";
}

/// libcurl 8.14 leaves a look-up thread that is still running to itself, with the host's name that it copied.
extern "C" const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions() {
  return "leak:strdup\n";
}

int main(int count, char** arguments) {
  using namespace orvane;
  if (count < 4) return EXIT_FAILURE;
  const Way& way = *std::find_if(std::begin(ways), std::end(ways),
                                 [&](const Way& each) { return each.name == arguments[1]; });
  limit = std::atoi(arguments[2]);
  server = "http://127.0.0.1:" + std::string(arguments[3]) + "/";
  atLimit = way.atLimit;
  alarm(60);
  startCalls();
  mayLeave = true;
  way.inMain();
  announceEnd();
  return exitCode;
}
