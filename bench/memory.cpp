// What the library allocates: the memory goals of rows 1 and 5, and the allocations of row 6.

#include <chrono>
#include <cstdlib>
#include <thread>

#include "bench/Allocations.h"
#include "bench/Rounds.h"
#include "bench/ServerProcess.h"
#include "bench/ServiceReplies.h"
#include "bench/SignIns.h"

namespace orvane::bench {
namespace {

void measurePictures() {
  const std::vector<Codec> codecs = {ownCodec(), nlohmannCodec(), boostCodec(), rapidCodec()};
  for (const std::size_t size : pictureSizes) {
    const std::string reply = pictureReply(makePicture(size, 0));
    std::vector<double> peaks;
    peaks.reserve(codecs.size());
    for (const Codec& codec : codecs)
      peaks.push_back(static_cast<double>(peakBytes([&] { codec.picture(reply).value(); })));
    const Topic topic = {"1", "memory at most, picture reply, " + std::to_string(size / 1000) + " KB",
                         Unit::bytes};
    state(topic, {peaks[0]}, 4.0 * static_cast<double>(size));
    for (std::size_t i = 1; i < codecs.size(); ++i)
      compare(topic, {peaks[0]}, codecs[i].name, {peaks[i]}, {});
  }
}

/// Returns when no thread has allocated or released anything for a while.
void awaitQuiet() {
  for (std::size_t before = 0, now = allocatedBytes(); before != now; now = allocatedBytes()) {
    before = now;
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
  }
}

/// With a server that takes requests and does not reply.
void measureWaitingCalls() {
  constexpr std::size_t count = 10'000;
  startCodes(64);  // More than have a connection: the rest waits like all that come later.
  awaitQuiet();
  const std::size_t before = allocatedBytes();
  startCodes(count);
  awaitQuiet();
  const double each = static_cast<double>(allocatedBytes() - before) / static_cast<double>(count);
  const double body = static_cast<double>(ownCodec().body(codeFields()).size());
  state({"5", "memory of a waiting call, beyond its body", Unit::bytes}, {each - body}, 1024);
}

struct PerCall {
  double here = 0;
  double news = 0;
  double plain = 0;
};

PerCall countPerCall(const std::function<void()>& call) {
  constexpr std::size_t times = 1000;
  for (std::size_t i = 0; i < times; ++i) call();  // Until all buffers have their size.
  const AllocationCounts before = allocationCounts();
  const AllocationCounts hereBefore = allocationCountsHere();
  for (std::size_t i = 0; i < times; ++i) call();
  const AllocationCounts after = allocationCounts();
  const AllocationCounts hereAfter = allocationCountsHere();
  const auto each = [](std::size_t from, std::size_t to) {
    return static_cast<double>(to - from) / static_cast<double>(times);
  };
  return {each(hereBefore.news + hereBefore.plain, hereAfter.news + hereAfter.plain),
          each(before.news, after.news), each(before.plain, after.plain)};
}

void measureCalls(std::uint16_t port) {
  const std::unique_ptr<Client> client = makeCurlEasyClient(port);
  const Codec codec = nlohmannCodec();
  const PerCall ours = countPerCall([] { requestCode(); });
  const PerCall theirs = countPerCall([&] { requestCode(*client, codec); });
  const auto row = [](const std::string& what) { return Topic{"6", what, Unit::count}; };
  const char* const peer = "curl easy, nlohmann";
  compare(row("allocations of a tiny call"), {ours.news + ours.plain}, peer, {theirs.news + theirs.plain},
          {Goal::Form::share, {}});
  compare(row("... by C++ code"), {ours.news}, peer, {theirs.news}, {Goal::Form::share, {}});
  compare(row("... by curl and the C library"), {ours.plain}, peer, {theirs.plain}, {Goal::Form::share, {}});
  compare(row("... on the caller's thread"), {ours.here}, peer, {theirs.here}, {Goal::Form::share, {}});
}

}  // namespace
}  // namespace orvane::bench

int main(int count, char** arguments) {
  using namespace orvane::bench;
  // A platform is for a whole process: so "waiting" is another process.
  if (count > 1) {
    const ServerProcess server(arguments[0], {"hold"});
    installBenchPlatform(server.port());
    measureWaitingCalls();
    std::_Exit(0);  // With its calls still waiting.
  }
  const ServerProcess server(arguments[0]);
  installBenchPlatform(server.port());
  measurePictures();
  measureCalls(server.port());
}
