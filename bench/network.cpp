// What the library does over connections: rows 3, 4, 5 and 8.
//
// bench-network [bursts|processor] [pinned] [awake]: rows 3 and 4, with "bursts" row 5, with "processor" row
// 8. "pinned" keeps the clients on the first processor; the server is on the last. "awake" keeps processors
// from falling asleep.

#include <algorithm>
#include <chrono>
#include <iostream>
#include <string_view>

#include "bench/CurlPosts.h"
#include "bench/HandingPosts.h"
#include "bench/Rounds.h"
#include "bench/ServerProcess.h"
#include "bench/ServiceReplies.h"
#include "bench/SignIns.h"
#include "bench/process.h"
#include "orvane/client/ServiceCall.h"

namespace orvane::bench {
namespace {

/// A way to sign in by hand, with the goals against it.
struct ByHand {
  std::string name;
  std::unique_ptr<Client> client;
  Codec codec;
  std::optional<double> goal = {};
};

constexpr Goal::Form share = Goal::Form::share;

/// What the processors work for a call: what a battery pays.
void compareProcessorTimes(const std::string& how, std::uint16_t port, bool isPinned) {
  constexpr std::size_t calls = 1500;
  constexpr std::size_t signIns = 2 * pictureCount;
  const auto client = makeCurlEasyClient(port);
  const auto handing = makeHandingClient(makeCurlEasyClient(port));
  const Codec own = ownCodec();
  const Codec nlohmann = nlohmannCodec();
  const std::vector<Figures> figures = takeTurns({
      {"call", [] { return processorTimeEach(calls, [] { requestCode(); }); }},
      {"call by hand", [&] { return processorTimeEach(calls, [&] { requestCode(*client, own); }); }},
      {"call handed over", [&] { return processorTimeEach(calls, [&] { requestCode(*handing, own); }); }},
      {"sign-in", [] { return processorTimeEach(signIns, [] { signIn(); }); }},
      {"sign-in by hand", [&] { return processorTimeEach(signIns, [&] { signIn(*client, nlohmann); }); }},
      {"sign-in, own reader", [&] { return processorTimeEach(signIns, [&] { signIn(*client, own); }); }},
  });
  const auto pinnedGoal = [&](double goal) { return isPinned ? std::optional(goal) : std::nullopt; };
  const std::string time = "processor time, ";
  compare({"8", time + "tiny call" + how}, figures[0], "curl easy, own reader", figures[1],
          {share, pinnedGoal(1.10)});
  compare({"8", time + "tiny call" + how}, figures[0], "curl easy, handed over", figures[2],
          {share, pinnedGoal(1.10)});
  compare({"8", time + "whole sign-in" + how}, figures[3], "curl easy, nlohmann", figures[4],
          {share, pinnedGoal(0.35)});
  compare({"8", time + "whole sign-in" + how}, figures[3], "curl easy, own reader", figures[5], {share, {}});
}

void compareSignIns(const std::string& how, std::uint16_t port, bool isPinned) {
  constexpr std::size_t times = 2 * pictureCount;
  std::vector<ByHand> peers;
  const auto pinnedGoal = [&](double goal) { return isPinned ? std::optional(goal) : std::nullopt; };
  peers.push_back({"curl easy, nlohmann", makeCurlEasyClient(port), nlohmannCodec(), pinnedGoal(0.30)});
  peers.push_back({"curl easy, own reader", makeCurlEasyClient(port), ownCodec(), pinnedGoal(1.25)});
  peers.push_back({"cpp-httplib, nlohmann", makeHttplibClient(port), nlohmannCodec()});
  peers.push_back({"Beast, Boost.JSON", makeBeastClient(port), boostCodec()});
  peers.push_back({"socket, own reader", makeSocketClient(port), ownCodec()});

  if (!isPicture(signIn())) throw std::runtime_error("another picture came");
  std::vector<Contestant> contestants = {
      {"library", [] { return nanosecondsEach(times, [] { signIn(); }); }}};
  for (const ByHand& peer : peers) {
    if (!isPicture(signIn(*peer.client, peer.codec)))
      throw std::runtime_error(peer.name + ": another picture");
    contestants.push_back(
        {peer.name, [&peer] { return nanosecondsEach(times, [&] { signIn(*peer.client, peer.codec); }); }});
  }
  const std::vector<Figures> figures = takeTurns(contestants);
  for (std::size_t i = 0; i < peers.size(); ++i)
    compare({"3", "whole sign-in" + how}, figures[0], peers[i].name, figures[i + 1], {share, peers[i].goal});
}

/// Adds what each call took to `latencies`.
double timedCodes(std::size_t times, Figures& latencies) {
  return nanosecondsEach(times, [&] { latencies.push_back(nanosecondsEach(1, [] { requestCode(); })); });
}

void compareCalls(const std::string& how, std::uint16_t port, bool isPinned) {
  constexpr std::size_t times = 1500;
  const Codec codec = ownCodec();
  std::vector<ByHand> peers;
  const auto pinnedGoal = [&](double goal) { return isPinned ? std::optional(goal) : std::nullopt; };
  peers.push_back({"curl easy", makeCurlEasyClient(port), codec, pinnedGoal(1.25)});
  peers.push_back({"cpp-httplib", makeHttplibClient(port), codec});
  peers.push_back({"Beast", makeBeastClient(port), codec});
  peers.push_back({"socket", makeSocketClient(port), codec});
  CurlPosts multi(port, 1);

  Figures latencies;
  std::vector<Contestant> contestants = {{"library", [&] { return timedCodes(times, latencies); }}};
  for (const ByHand& peer : peers) {
    contestants.push_back({peer.name, [&peer] {
                             return nanosecondsEach(times, [&] { requestCode(*peer.client, peer.codec); });
                           }});
  }
  contestants.push_back({"curl multi", [&] {
                           return nanosecondsEach(times, [&] {
                             multi.post(
                                 1, codeCall.path, [&] { return codec.body(codeFields()); },
                                 [&](const std::string& reply) { codec.message(reply).value(); });
                           });
                         }});
  const std::vector<Figures> figures = takeTurns(contestants);
  const std::string what = "tiny call after tiny call" + how;
  for (std::size_t i = 0; i < peers.size(); ++i)
    compare({"4", what}, figures[0], peers[i].name + ", own reader", figures[i + 1], {share, peers[i].goal});
  compare({"4", what}, figures[0], "curl multi, own reader", figures.back(), {share, {}});
  std::sort(latencies.begin(), latencies.end());
  state({"4", what + ", 99th percentile"}, {latencies[latencies.size() * 99 / 100]}, 5e6);
}

/// Starts that many calls at once, so often that it takes a while; what one call took.
double burst(std::size_t count, const std::function<void(std::size_t)>& start) {
  const std::size_t times = std::max<std::size_t>(1, 4'000 / count);
  return nanosecondsEach(times, [&] { start(count); }) / static_cast<double>(count);
}

void compareBursts(const std::string& how, std::uint16_t port, bool isPinned) {
  constexpr std::size_t connections = 6;
  const Codec codec = ownCodec();
  const std::string body = codec.body(codeFields());
  CurlPosts multi(port, connections);
  HandingPosts handing(port, connections);
  const auto newBody = [&] { return codec.body(codeFields()); };
  const auto readReply = [&](const std::string& reply) { codec.message(reply).value(); };
  const auto bare = [&](std::size_t count) {
    multi.post(
        count, codeCall.path, [&] { return std::string(body); }, [](const auto&) {});
  };
  const auto whole = [&](std::size_t count) { multi.post(count, codeCall.path, newBody, readReply); };
  const auto handed = [&](std::size_t count) { handing.post(count, codeCall.path, newBody, readReply); };

  constexpr std::array<std::size_t, 3> counts = {64, 1'000, 10'000};
  std::vector<Contestant> contestants;
  for (const std::size_t count : counts) {
    const std::string name = std::to_string(count);
    contestants.push_back({name, [count] { return burst(count, requestCodes); }});
    contestants.push_back({name + " bare", [count, &bare] { return burst(count, bare); }});
    contestants.push_back({name + " whole", [count, &whole] { return burst(count, whole); }});
    contestants.push_back({name + " handed", [count, &handed] { return burst(count, handed); }});
  }
  const std::vector<Figures> figures = takeTurns(contestants);
  for (std::size_t i = 0; i < counts.size(); ++i) {
    const Topic topic = {"5", std::to_string(counts[i]) + " calls at once" + how};
    const Figures& ours = figures[4 * i];
    const Goal goal = {Goal::Form::multiple,
                       isPinned && counts[i] > counts[0] ? std::optional(0.85) : std::nullopt};
    compare(topic, ours, "curl multi, nothing read", figures[4 * i + 1], goal);
    compare(topic, ours, "curl multi, own reader", figures[4 * i + 2], {Goal::Form::multiple, {}});
    compare(topic, ours, "curl multi, handed over", figures[4 * i + 3], goal);
  }
  compare({"5", "10000 calls at once" + how}, figures[8], "the library, 64 at once", figures[0],
          {share, 1.25});
}

}  // namespace
}  // namespace orvane::bench

int main(int count, char** arguments) {
  using namespace orvane::bench;
  const std::vector<std::string_view> flags(arguments + 1, arguments + count);
  const auto has = [&](std::string_view flag) {
    return std::find(flags.begin(), flags.end(), flag) != flags.end();
  };
  const bool isPinned = has("pinned");
  const ServerProcess server(arguments[0],
                             has("awake") ? std::vector<std::string>{"awake"} : std::vector<std::string>());
  keepFreedMemory();
  if (isPinned) pinTo(0);
  installBenchPlatform(server.port());
  const std::string how = isPinned ? ", pinned" : "";
  if (has("bursts")) {
    compareBursts(how, server.port(), isPinned);
  } else if (has("processor")) {
    compareProcessorTimes(how, server.port(), isPinned);
  } else {
    compareSignIns(how, server.port(), isPinned);
    compareCalls(how, server.port(), isPinned);
  }
}
