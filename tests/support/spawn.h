#pragma once

#include <spawn.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace orvane::test {

/// Returns the texts as the system takes arguments. Valid as long as they are.
inline std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  for (std::string& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

/// Starts the program that the first word names, with its output going to these descriptors. Returns its
/// process, or 0 if it could not be started.
inline pid_t spawn(std::vector<std::string> words, int output, int errors = STDERR_FILENO) {
  const std::vector<char*> arguments = pointers(words);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, errors, STDERR_FILENO);
  pid_t process = 0;
  const bool isThere = posix_spawn(&process, arguments[0], &actions, nullptr, arguments.data(), environ) == 0;
  posix_spawn_file_actions_destroy(&actions);
  return isThere ? process : 0;
}

}  // namespace orvane::test
