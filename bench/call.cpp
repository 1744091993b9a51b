// Tiny calls, one after another.

#include "bench/Rounds.h"
#include "bench/Server.h"
#include "bench/byHand.h"
#include "bench/byLibrary.h"

int main() {
  using namespace orvane::bench;
  const Server server;
  pinTo(0);
  installBenchPlatform(server.port());
  const Post curl = handedOver(curlEasy(server.port()));
  constexpr std::size_t times = 1500;
  const std::vector<Costs> costs = takeTurns({[] { return costOf(times, 1, [] { requestCodes(1); }); },
                                              [&] { return costOf(times, 1, [&] { requestCode(curl); }); }});
  const char* const peer = "curl easy, handed over";
  printRows("a tiny call, processor time", costs[0].processor,
            {{peer, costs[1].processor, {Goal::Ratio::share, 1.25}}});
  printRows("a tiny call, wall time", costs[0].wall, {{peer, costs[1].wall, {Goal::Ratio::share}}});
}
