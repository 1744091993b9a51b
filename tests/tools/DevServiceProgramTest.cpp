#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "tests/support/Conversation.h"
#include "tests/support/spawn.h"

namespace {

using orvane::test::endOf;

/// Returns how a process ends; see endOf().
int waitFor(pid_t process) {
  int status = 0;
  waitpid(process, &status, 0);
  return endOf(status);
}

/// A service whose output goes into a small pipe.
class Program {
 public:
  explicit Program(std::vector<std::string> options = {}) {
    options.insert(options.begin(), {DEVSERVICE_PROGRAM, "--port=0"});
    int ends[2];
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    fcntl(ends[1], F_SETPIPE_SZ, 4096);
    output_ = ends[0];
    process_ = orvane::test::spawn(options, ends[1]);
    close(ends[1]);
    const std::string line = readLine();
    port_ = line.substr(line.rfind(':') + 1);
  }
  Program(const Program&) = delete;
  ~Program() { close(output_); }

  std::string readLine() const {
    std::string line;
    for (char c = 0; read(output_, &c, 1) == 1 && c != '\n';) line.push_back(c);
    return line;
  }

  /// Returns what curl prints.
  std::string curl(const std::string& arguments) const {
    std::FILE* const pipe = popen(("curl -sm60 http://127.0.0.1:" + port_ + arguments).c_str(), "r");
    std::string output;
    for (int c; (c = std::fgetc(pipe)) != EOF;) output.push_back(static_cast<char>(c));
    EXPECT_EQ(pclose(pipe), 0) << arguments;
    return output;
  }

  /// Sends the signal.
  const Program& send(int signal) const {
    EXPECT_EQ(kill(process_, signal), 0);
    return *this;
  }

  int status() const { return waitFor(process_); }

 private:
  int output_;
  pid_t process_;
  std::string port_;
};

TEST(DevServiceProgram, GoesOnWithoutAReader) {
  const Program service;
  service.curl("/[1-2000] >/dev/null");
  int lines = 0, dropped = 0;
  while (dropped == 0) {
    const std::string line = service.readLine();
    if (line.starts_with('(')) dropped = std::stoi(line.substr(1));
    lines += dropped == 0;
  }
  EXPECT_EQ(lines + dropped, 2000);
  service.curl("/[1-2000] >/dev/null");
  EXPECT_EQ(service.send(SIGTERM).status(), 0);
}

TEST(DevServiceProgram, SaysWhatItMakesPredictable) {
  const Program service({"--code=482913", "--picture-text=AB3DE", "--seed=7"});
  for (const std::string line :
       {"every code is 482913", "the text of every picture is AB3DE", "random choices start from seed 7"}) {
    EXPECT_EQ(service.readLine(), line);
  }
  EXPECT_NE(service.curl("/page/state").find(R"({"code":"482913","pictureText":"AB3DE","seed":7})"),
            std::string::npos);
  const std::string head =
      " -H Content-Type:application/json -H XRAPI-VERSION:1.0 -H XRAPI-DEVICE-TYPE:1 -d ";
  service.curl("/tenant/verify/captcha" + head + R"('{"mobile":"12345"}')");
  service.curl("/tenant/getVerifyCode" + head + R"('{"mobile":"12345","captcha":"AB3DE"}')");
  EXPECT_EQ(
      service.curl("/tenant/submitVerifyCode" + head + R"('{"mobile":"12345","verificationCode":"482913"}')"),
      R"({"code":0,"msg":"welcome","data":null})");
  EXPECT_EQ(service.send(SIGTERM).status(), 0);
}

TEST(DevServiceProgram, NeedsAReaderForItsAddress) {
  const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
  EXPECT_EQ(waitFor(orvane::test::spawn({DEVSERVICE_PROGRAM, "--port=0"}, full)), 1);
  close(full);
}

TEST(DevServiceProgram, IgnoresAnInterruptionThatItsParentIgnores) {
  for (const bool isIgnored : {true, false}) {
    const auto before = std::signal(SIGINT, isIgnored ? SIG_IGN : SIG_DFL);
    const Program service;
    std::signal(SIGINT, before);
    service.send(SIGINT);
    if (isIgnored) {
      EXPECT_NE(service.curl("/"), "");
      service.send(SIGTERM);
    }
    EXPECT_EQ(service.status(), 0);
  }
}

}  // namespace
