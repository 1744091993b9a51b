// A whole sign-in, four calls. Prints a sentence for the page before the rows.

#include <cstdio>
#include <stdexcept>

#include "bench/Rounds.h"
#include "bench/Server.h"
#include "bench/Service.h"
#include "bench/byHand.h"
#include "bench/byLibrary.h"

int main() {
  using namespace orvane::bench;
  const Server server;
  pinTo(0);
  installBenchPlatform(server.port());
  const Post curl = curlEasy(server.port());
  const Post cppHttplib = httplib(server.port());

  // All receive the same pictures, one after another.
  const std::vector<orvane::Bytes> pictures = makePictures(usualPicture);
  if (signIn() != pictures[0] || signIn(curl) != pictures[1] || signIn(cppHttplib) != pictures[2])
    throw std::runtime_error("another picture came");
  const std::size_t times = 2 * pictures.size();
  const std::vector<Costs> costs = takeTurns({[&] { return costOf(times, 1, [] { signIn(); }); },
                                              [&] { return costOf(times, 1, [&] { signIn(curl); }); },
                                              [&] { return costOf(times, 1, [&] { signIn(cppHttplib); }); }});

  std::printf(
      "A sign-in, four calls to a server on the same machine, takes %s of wall time and %s of processor\n"
      "time; done by hand with libcurl and nlohmann it takes %s and %s.\n",
      medianTime(costs[0].wall).c_str(), medianTime(costs[0].processor).c_str(),
      medianTime(costs[1].wall).c_str(), medianTime(costs[1].processor).c_str());
  printRows("a sign-in, wall time", costs[0].wall,
            {{"curl easy, nlohmann", costs[1].wall, {Goal::Ratio::share, 0.30}},
             {"cpp-httplib, nlohmann", costs[2].wall, {Goal::Ratio::share}}});
  printRows("a sign-in, processor time", costs[0].processor,
            {{"curl easy, nlohmann", costs[1].processor, {Goal::Ratio::share}},
             {"cpp-httplib, nlohmann", costs[2].processor, {Goal::Ratio::share}}});
}
