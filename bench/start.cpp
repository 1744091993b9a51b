// From the start of a process to the arrival of the first request that it sends.

#include <array>
#include <csignal>
#include <filesystem>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include "bench/Rounds.h"
#include "bench/Server.h"

namespace orvane::bench {
namespace {

/// Returns the mean of 20 starts of a program beside this one, each until `listener` has its first request.
Cost startCost(std::filesystem::path program, const char* name, int listener, std::string port) {
  program.replace_filename(name);
  const std::array<char*, 3> arguments = {port.data(), port.data(), nullptr};
  constexpr int times = 20;
  Cost mean;
  for (int i = 0; i < times; ++i) {
    pid_t process = 0;
    int connection = -1;
    const Cost cost = costOf(1, 1, [&] {
      char byte = 0;
      if (posix_spawn(&process, program.c_str(), nullptr, nullptr, arguments.data(), environ) != 0)
        throw std::runtime_error("a program does not start");
      connection = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
      if (recv(connection, &byte, 1, 0) != 1) throw std::runtime_error("no request");
    });
    mean.wall += cost.wall / times;
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
    close(connection);
  }
  return mean;
}

}  // namespace
}  // namespace orvane::bench

int main(int, char** arguments) {
  using namespace orvane::bench;
  pinTo(0);
  std::uint16_t port = 0;
  const int listener = listenOnLoopback(port);
  const auto starter = [&](const char* name) {
    return [=] { return startCost(arguments[0], name, listener, std::to_string(port)); };
  };
  const std::vector<Costs> costs = takeTurns({starter("bench-start-orvane"), starter("bench-start-curl")});
  printRows("process start to first request", costs[0].wall,
            {{"a bare libcurl program", costs[1].wall, {Goal::Ratio::share, 1.2}}});
}
