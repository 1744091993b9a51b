// Very many calls over loopback, with a share of each fault.
//
// soak CALLS: makes that many calls and checks that each has the outcome that its number demands. Checks at
// the end that memory and descriptors are what they were after the first ten thousand. Prints the figures.

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <future>
#include <malloc.h>
#include <string>
#include <thread>
#include <unistd.h>

#include "orvane/host/HostSession.h"
#include "orvane/host/hostMainQueue.h"
#include "orvane/orvane.h"
#include "tests/support/LoopbackServer.h"
#include "tests/support/entries.h"

namespace orvane {
namespace {

using test::entries;
using test::LoopbackServer;
using test::reply;
using Then = LoopbackServer::Then;
using Answer = LoopbackServer::Answer;
using Request = LoopbackServer::Request;

const std::string good = R"({"code":0,"msg":"ok","data":[1,2,3]})";
const std::string begun = "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n{";
const std::string chunks =
    "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n2\r\n{\"\r\n8\r\ncode\":0}\r\n0\r\n\r\n";
const std::string busy = reply(R"({"code":7,"msg":"Busy"})", "", "503 Busy");

/// How a call is made, what the service replies, and how the call has to end.
struct Kind {
  const char* description;
  const char* outcome;
  int perTenThousand;
  Answer answer = {reply(good)};
  enum { code, picture, login, idle, noConnection, noScheme, noRequest, sessionGone, cancelled } call = code;
};

const Kind kinds[] = {
    {"SMS code", "done", 0},  // All that is not of another kind.
    {"picture", "done", 1500, {reply(good)}, Kind::picture},
    {"login with its submission", "done", 800, {reply(good)}, Kind::login},
    {"refused", "Busy (7)", 500, {busy}},
    {"login refused", "Busy (1)", 200, {busy}, Kind::login},
    {"reply in chunks", "done", 300, {chunks}},
    {"redirected", "done", 200, {reply("", "Location: /once\r\n", "307 Elsewhere")}},
    {"reply that is not JSON", "com.brovent.error (-1)", 200, {reply("<html>")}},
    {"reset before the reply", "NSURLErrorDomain (-1005)", 100, {"", Then::reset}},
    {"reset within the reply", "NSURLErrorDomain (-1005)", 100, {begun, Then::reset}},
    {"closed within the reply", "NSURLErrorDomain (-1005)", 50, {begun, Then::close}},
    {"reply that is not HTTP", "NSURLErrorDomain (-1017)", 50, {"garbage\r\n\r\n", Then::close}},
    {"compression that is none",
     "NSURLErrorDomain (-1015)",
     100,
     {reply(good, "Content-Encoding: gzip\r\n")}},
    {"reply too large", "NSURLErrorDomain (-1103)", 20, {reply(std::string(200'000, ' ') + good)}},
    {"redirected without end",
     "NSURLErrorDomain (-1007)",
     20,
     {reply("", "Location: /again\r\n", "307 Elsewhere")}},
    {"no reply", "NSURLErrorDomain (-1001)", 10, {"", Then::hold}, Kind::idle},
    {"no server listens", "NSURLErrorDomain (-1004)", 20, {}, Kind::noConnection},
    {"no such scheme", "NSURLErrorDomain (-1002)", 50, {}, Kind::noScheme},
    {"no request can be built", "com.brovent.error (-1)", 50, {}, Kind::noRequest},
    {"session destroyed at once", "done", 20, {reply(good)}, Kind::sessionGone},
    // The outcome if it was not dropped in time.
    {"cancelled at once", "NSURLErrorDomain (-1002)", 20, {}, Kind::cancelled},
};

/// Returns the kind of the call of that number. The kinds alternate without a pattern.
const Kind& kindOf(int call) {
  int place = static_cast<int>(call * 7919LL % 10'000);
  for (const Kind& kind : kinds) {
    place -= kind.perTenThousand;
    if (place < 0) return kind;
  }
  return kinds[0];
}

/// The service. It knows a call by the mobile number in the body, or by the path.
Answer answer(const Request& request) {
  if (request.head.find(" /once ") != request.head.npos) return {reply(good)};
  const std::size_t inBody = request.body.find(R"("mobile":")");
  const std::string number = inBody == std::string::npos ? request.head.substr(request.head.find('/') + 1)
                                                         : request.body.substr(inBody + 10);
  return kindOf(std::atoi(number.c_str())).answer;
}

/// Starts the service in a child process, which ends with this one. Returns its port.
std::uint16_t startService() {
  int lifeline[2];
  int port[2];
  if (pipe(lifeline) != 0 || pipe(port) != 0) std::abort();
  std::uint16_t number = 0;
  if (fork() == 0) {
    close(lifeline[1]);
    const LoopbackServer server(answer, LoopbackServer::Requests::forgotten);
    number = server.port();
    if (write(port[1], &number, sizeof number) != sizeof number || read(lifeline[0], &number, 1) != 0)
      std::abort();
    _exit(0);
  }
  if (read(port[0], &number, sizeof number) != sizeof number) std::abort();
  for (const int end : {lifeline[0], port[0], port[1]}) close(end);
  return number;
}

class Soak {
 public:
  explicit Soak(std::uint16_t port);

  /// Makes calls up to that number, and returns when all of them are over.
  void runTo(int call);

  int ended(const Kind& kind) const { return ended_[indexOf(kind)]; }
  int wrong() const { return wrong_; }
  int dropped() const { return dropped_; }

 private:
  class Ticket;

  static std::size_t indexOf(const Kind& kind) { return static_cast<std::size_t>(&kind - kinds); }
  void startNext();
  void start(const Kind& kind, const std::string& number, const std::shared_ptr<Ticket>& ticket);
  void startAndCancel(NetworkTool::Completion finished);
  void end(const Kind& kind, const std::string& outcome);

  static constexpr int inFlight = 64;
  const std::string server_;
  const HostSessionConfiguration configuration_;
  NetworkTool tool_;
  NetworkTool impatient_;
  NetworkTool cancelling_;
  int limit_ = 0;
  std::atomic<int> next_ = 0;
  std::atomic<int> over_ = 0;
  std::array<std::atomic<int>, std::size(kinds)> ended_{};
  std::atomic<int> wrong_ = 0;
  std::atomic<int> dropped_ = 0;
};

/// Captured by a call's completion. Its state when it is released is the outcome of the call.
class Soak::Ticket {
 public:
  Ticket(Soak& soak, const Kind& kind) : soak_(soak), kind_(kind) {}
  Ticket(const Ticket&) = delete;
  Ticket& operator=(const Ticket&) = delete;
  ~Ticket() { soak_.end(kind_, outcome_); }

  void complete(bool hasResult, const ErrorPtr& error) {
    const std::string outcome = error ? description(*error) : hasResult ? "done" : "nothing";
    outcome_ = outcome_ == "dropped" ? outcome : "completed twice";
  }

 private:
  Soak& soak_;
  const Kind& kind_;
  std::string outcome_ = "dropped";
};

Soak::Soak(std::uint16_t port)
    : server_("http://127.0.0.1:" + std::to_string(port) + "/"),
      configuration_{.maximumBodySize = 100'000,
                     .reroutes = {{std::string(serviceHost()), 80, "127.0.0.1", port}}} {
  installPlatform({.sharedSession = std::make_shared<HostSession>(configuration_)});
  impatient_.setSession(
      std::make_shared<HostSession>(HostSessionConfiguration{.idleTimeout = std::chrono::milliseconds(100)}));
  cancelling_.setSession(std::make_shared<HostSession>());
}

void Soak::runTo(int call) {
  limit_ = call;
  for (int i = 0; i < inFlight; ++i) startNext();
  hostMainQueue().run();
}

void Soak::startNext() {
  int call = next_;
  while (call < limit_ && !next_.compare_exchange_weak(call, call + 1)) {
  }
  if (call < limit_) start(kindOf(call), std::to_string(call), std::make_shared<Ticket>(*this, kindOf(call)));
}

void Soak::start(const Kind& kind, const std::string& number, const std::shared_ptr<Ticket>& ticket) {
  const auto finished = [ticket](const auto& result, const ErrorPtr& error) {
    ticket->complete(result.has_value(), error);
  };
  OrvaneManager& manager = OrvaneManager::shareManager();
  switch (kind.call) {
    case Kind::picture:
      return manager.requestPictureCode(number, finished);
    case Kind::login:
      return manager.requestLogin(number, "123456", finished);
    case Kind::idle:
      return impatient_.requestJSON(HTTPMethod::JSON_POST, server_ + number, {}, finished);
    case Kind::noConnection:
      return tool_.requestJSON(HTTPMethod::GET, "http://127.0.0.1:1/", {}, finished);
    case Kind::noScheme:
      return tool_.requestJSON(HTTPMethod::GET, "nowhere", {}, finished);
    case Kind::noRequest:
      return tool_.requestJSON(HTTPMethod::GET, "", {}, finished);
    case Kind::sessionGone: {
      NetworkTool brief;
      brief.setSession(std::make_shared<HostSession>(configuration_));
      return brief.requestJSON(HTTPMethod::GET, server_ + number, {}, finished);
    }
    case Kind::cancelled:
      return hostMainQueue().async([this, finished] { startAndCancel(finished); });
    case Kind::code:
      return manager.requestCode(number, "aB3d",
                                 [ticket](const ErrorPtr& error) { ticket->complete(true, error); });
  }
}

/// Starts a call while a handler keeps its session's queue busy, and drops it from there.
void Soak::startAndCancel(NetworkTool::Completion finished) {
  struct Busy {
    std::promise<void> begun;
    std::promise<void> over;
  };
  const auto busy = std::make_shared<Busy>();
  cancelling_.session()->startDataTask(URLRequest("nowhere"), [busy](const auto&) {
    busy->begun.set_value();
    busy->over.get_future().wait();
  });
  cancelling_.requestJSON(HTTPMethod::GET, "nowhere", {}, std::move(finished));
  busy->begun.get_future().wait();
  cancelling_.cancleAllNetwork();
  busy->over.set_value();
}

void Soak::end(const Kind& kind, const std::string& outcome) {
  ++ended_[indexOf(kind)];
  if (kind.call == Kind::cancelled && outcome == "dropped") {
    ++dropped_;
  } else if (outcome != kind.outcome && ++wrong_ <= 20) {
    std::fprintf(stderr, "%s: %s\n", kind.description, outcome.c_str());
  }
  startNext();
  if (++over_ == limit_) hostMainQueue().stop();
}

struct Footprint {
  std::ptrdiff_t threads;
  std::ptrdiff_t descriptors;
  long allocated;  ///< Bytes.
  long resident;   ///< Bytes.
};

/// Returns what the process holds, once the threads of destroyed sessions have ended.
Footprint footprint() {
  constexpr std::ptrdiff_t lasting = 1 + 3 * 2;
  while (entries("/proc/self/task") > lasting) std::this_thread::yield();
  const struct mallinfo2 memory = mallinfo2();
  long pages = 0;
  std::ifstream("/proc/self/statm") >> pages >> pages;
  return {entries("/proc/self/task"), entries("/proc/self/fd"),
          static_cast<long>(memory.uordblks + memory.hblkhd), pages * sysconf(_SC_PAGESIZE)};
}

void print(const char* when, const Footprint& held) {
  std::printf("| %s | %td | %td | %ld KB | %ld KB |\n", when, held.threads, held.descriptors,
              held.allocated / 1024, held.resident / 1024);
}

}  // namespace
}  // namespace orvane

int main(int count, char** arguments) {
  using namespace orvane;
  constexpr int first = 10'000;
  const int calls = std::max(count > 1 ? std::atoi(arguments[1]) : 1'000'000, first + 1);
  Soak soak(startService());
  const auto start = std::chrono::steady_clock::now();
  soak.runTo(first);
  const Footprint before = footprint();
  soak.runTo(calls);
  const Footprint after = footprint();
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;

  std::printf("| kind of call | calls | outcome of each |\n|---|---|---|\n");
  int ended = 0;
  for (const Kind& kind : kinds) {
    ended += soak.ended(kind);
    std::printf("| %s | %d | %s |\n", kind.description, soak.ended(kind), kind.outcome);
  }
  std::printf("\n| | threads | descriptors | allocated | resident |\n|---|---|---|---|---|\n");
  print("after 10,000 calls", before);
  print("in the end", after);
  std::printf("\n%d of %d calls over in %.0f s, %d of them dropped, %d with another outcome\n", ended, calls,
              took.count(), soak.dropped(), soak.wrong());

  // Six kept-alive connections more or less at each moment, and what the allocator keeps.
  const bool isBack = after.threads == before.threads && after.descriptors <= before.descriptors + 6 &&
                      after.allocated <= before.allocated + (64 << 10) &&
                      after.resident <= before.resident + (4 << 20);
  if (!isBack) std::printf("Threads, descriptors or memory are not back.\n");
  std::fflush(stdout);
  return isBack && ended == calls && soak.wrong() == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
