#pragma once

#include <cstdio>
#include <spawn.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
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

/// Returns the exit status of a process, or the signal that ended it as a negative number.
inline int endOf(int status) {
  return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

/// Waits until a process ends; see endOf().
inline int awaitEnd(pid_t process) {
  int status = 0;
  waitpid(process, &status, 0);
  return endOf(status);
}

/// How a program ended: its wait status, the most memory that it had, in KiB, and what it wrote.
struct Ended {
  int status = -1;
  long memory = 0;
  std::string output;
  std::string errors;
};

/// Runs a program to its end.
inline Ended run(std::vector<std::string> words) {
  std::FILE* const files[] = {std::tmpfile(), std::tmpfile()};
  Ended ended;
  rusage usage{};
  if (const pid_t child = spawn(std::move(words), fileno(files[0]), fileno(files[1])))
    ::wait4(child, &ended.status, 0, &usage);
  ended.memory = usage.ru_maxrss;
  for (std::string* const text : {&ended.output, &ended.errors}) {
    std::FILE* const file = files[text == &ended.output ? 0 : 1];
    std::rewind(file);
    for (int c; (c = std::fgetc(file)) != EOF;) text->push_back(static_cast<char>(c));
    std::fclose(file);
  }
  return ended;
}

/// Runs a shell's command to its end.
inline Ended runShell(const std::string& command) {
  return run({"/bin/sh", "-c", command});
}

}  // namespace orvane::test
