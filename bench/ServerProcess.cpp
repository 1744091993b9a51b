#include "bench/ServerProcess.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "bench/process.h"

namespace orvane::bench {
namespace {

struct Pipe {
  int read = -1;
  int write = -1;
};

Pipe makePipe() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  return {ends[0], ends[1]};
}

std::string lastProcessor() {
  return std::to_string(std::max(std::thread::hardware_concurrency(), 1U) - 1);
}

}  // namespace

ServerProcess::ServerProcess(const char* program, const std::vector<std::string>& flags) {
  const Pipe input = makePipe();
  const Pipe output = makePipe();
  std::vector<std::string> words = {programBeside(program, "bench-server"), lastProcessor()};
  words.insert(words.end(), flags.begin(), flags.end());
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input.read, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output.write, STDOUT_FILENO);
  const int failure = posix_spawn(&process_, arguments[0], &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(input.read);
  close(output.write);
  lifeline_ = input.write;

  std::array<char, 16> text{};
  const bool answered = failure == 0 && read(output.read, text.data(), text.size() - 1) > 0;
  close(output.read);
  if (!answered) throw std::runtime_error("the server does not start");
  port_ = static_cast<std::uint16_t>(std::atoi(text.data()));
}

ServerProcess::~ServerProcess() {
  close(lifeline_);
  waitpid(process_, nullptr, 0);
}

}  // namespace orvane::bench
