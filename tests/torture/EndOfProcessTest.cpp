// Calls, signals and descriptors at the end of the process, and in its children.

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <curl/curl.h>
#include <fcntl.h>
#include <future>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "orvane/host/HostSession.h"
#include "tests/support/LoopbackServer.h"
#include "tests/support/entries.h"
#include "tests/support/perform.h"
#include "tests/support/spawn.h"

namespace orvane::test {
namespace {

using Then = LoopbackServer::Then;
using Answer = LoopbackServer::Answer;
using Request = LoopbackServer::Request;

/// Runs the program and returns its wait status; `took` is the time from its announcement to its end.
int statusOf(std::vector<std::string> words, std::chrono::duration<double, std::milli>& took) {
  int ends[2];
  EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
  const pid_t process = spawn(std::move(words), ends[1]);
  EXPECT_GT(process, 0);
  ::close(ends[1]);
  char announcement = 0;
  static_cast<void>(!::read(ends[0], &announcement, 1));
  const auto start = std::chrono::steady_clock::now();
  int status = 0;
  ::waitpid(process, &status, 0);
  took = std::chrono::steady_clock::now() - start;
  ::close(ends[0]);
  return status;
}

class EndOfProcess : public testing::TestWithParam<const char*> {};

TEST_P(EndOfProcess, IsCleanWhateverIsUnderWay) {
  LoopbackServer server([](const Request& request) {
    if (request.head.starts_with("GET /reset ")) return Answer{"", Then::reset};
    return request.head.starts_with("GET /good ") ? Answer{reply("{}")} : Answer{"", Then::hold};
  });
  std::chrono::duration<double, std::milli> longest{};
  for (const char* calls : {"0", "1", "5", "50"}) {
    std::chrono::duration<double, std::milli> took{};
    const int status = statusOf({LEAVING_PROGRAM, GetParam(), calls, std::to_string(server.port())}, took);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 7) << "after " << calls << " calls: " << status;
    longest = std::max(longest, took);
  }
  std::printf("Longest end: %.1f ms\n", longest.count());
}

INSTANTIATE_TEST_SUITE_P(Ways, EndOfProcess,
                         testing::Values("return", "exit_in_a_handler", "exit_on_the_main_queue",
                                         "exit_on_another_thread", "handler_that_never_returns",
                                         "sessions_destroyed", "calls_in_a_destructor"),
                         [](const auto& way) { return std::string(way.param); });

/// Returns how many descriptors a program would inherit that is started now.
int inheritable() {
  int count = 0;
  for (int descriptor = 0; descriptor < 1024; ++descriptor) {
    const int flags = ::fcntl(descriptor, F_GETFD);
    if (flags >= 0 && (flags & FD_CLOEXEC) == 0) ++count;
  }
  return count;
}

TEST(ChildProcess, InheritsNoDescriptor) {
  LoopbackServer server([](const Request& request) {
    return request.head.starts_with("GET /hold") ? Answer{"", Then::hold} : Answer{reply("")};
  });
  const int before = inheritable();
  const std::ptrdiff_t openBefore = entries("/proc/self/fd");
  HostSession session;
  session.startDataTask(URLRequest(server.url("/hold")), nullptr);
  session.startDataTask(URLRequest("https" + server.url("/").substr(4)), nullptr);
  for (int i = 0; i < 20; ++i) EXPECT_EQ(perform(session, URLRequest(server.url())), "");
  EXPECT_GE(entries("/proc/self/fd"), openBefore + 4);  // Two to wake up by, two connections at least.
  // curl before 8.8 has two, by which its own threads wake it, and does not close them in children.
  const int ofCurl = curl_version_info(CURLVERSION_NOW)->version_num < 0x080800 ? 2 : 0;
  EXPECT_LE(inheritable(), before + ofCurl);
}

sigset_t only(int signal) {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, signal);
  return set;
}

TEST(ChildProcess, InheritsTheSignalMaskOfTheApplication) {
  const sigset_t user = only(SIGUSR1);
  pthread_sigmask(SIG_BLOCK, &user, nullptr);
  HostSession session;
  sigset_t inHandler;
  std::promise<void> done;
  session.startDataTask(URLRequest("nowhere"), [&](const auto&) {
    pthread_sigmask(SIG_SETMASK, nullptr, &inHandler);
    done.set_value();
  });
  done.get_future().wait();
  pthread_sigmask(SIG_UNBLOCK, &user, nullptr);
  for (int signal = 1; signal < SIGRTMIN; ++signal)
    EXPECT_EQ(sigismember(&inHandler, signal) == 1, signal == SIGUSR1 || signal == SIGPIPE) << signal;
}

TEST(BrokenPipe, RaisesNoSignal) {
  std::signal(SIGPIPE, SIG_DFL);
  HostSession session;
  // Its threads are there before the signal is blocked.
  EXPECT_EQ(perform(session, URLRequest("nowhere")), "error -1002");
  const sigset_t pipe = only(SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
  ::kill(::getpid(), SIGPIPE);
  int taken = 0;
  sigwait(&pipe, &taken);
  EXPECT_EQ(taken, SIGPIPE);  // Here, and not by a thread of the session's.
  pthread_sigmask(SIG_UNBLOCK, &pipe, nullptr);

  // A proxy that agrees and goes: TLS writes into the broken connection.
  LoopbackServer server([](const Request& request) {
    const bool isTunnel = request.head.starts_with("CONNECT");
    return isTunnel ? Answer{"HTTP/1.1 200 OK\r\n\r\nno TLS", Then::close} : Answer{"", Then::reset};
  });
  HostSession proxied({.proxy = server.url("")});
  for (int i = 0; i < 10; ++i) {
    for (const char* url : {"https://name.example/", "http://name.example/"}) {
      URLRequest request(url);
      request.setMethod("POST");
      request.setBody(Bytes(100'000));
      EXPECT_TRUE(perform(proxied, request).starts_with("error"));
    }
  }
}

}  // namespace
}  // namespace orvane::test
