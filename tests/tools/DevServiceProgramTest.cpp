#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>
#include <vector>

#include "tests/support/spawn.h"

namespace {

using orvane::test::runShell;

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
    address_ = line.substr(line.find("127.0.0.1:"));
  }
  Program(const Program&) = delete;
  ~Program() { close(output_); }

  const std::string& address() const { return address_; }

  std::string readLine() const {
    std::string line;
    for (char c = 0; read(output_, &c, 1) == 1 && c != '\n';) line.push_back(c);
    return line;
  }

  /// Sends the signal.
  const Program& send(int signal) const {
    EXPECT_EQ(kill(process_, signal), 0);
    return *this;
  }

  int status() const { return orvane::test::awaitEnd(process_); }

 private:
  int output_;
  pid_t process_;
  std::string address_;
};

TEST(DevServiceProgram, PrintsEachRequestAndGoesOnWithoutAReader) {
  const Program service;
  const std::string ask2000Times = "curl -sm60 'http://" + service.address() + "/[1-2000]%07%c3'";
  EXPECT_EQ(runShell(ask2000Times).status, 0);
  int lines = 0, dropped = 0;
  while (dropped == 0) {
    const std::string line = service.readLine();
    if (line.starts_with('(')) {
      dropped = std::stoi(line.substr(1));
    } else {
      EXPECT_NE(line.find(R"(\x07\xc3 404 {"code":1006,"msg":")"), line.npos) << line;
      ++lines;
    }
  }
  EXPECT_EQ(lines + dropped, 2000);
  EXPECT_EQ(runShell(ask2000Times).status, 0);
  EXPECT_EQ(service.send(SIGTERM).status(), 0);
}

TEST(DevServiceProgram, SaysWhatItMakesPredictable) {
  const Program service({"--code=482913", "--picture-text=AB3DE", "--seed=7"});
  for (const std::string line :
       {"every code is 482913", "the text of every picture is AB3DE", "random choices start from seed 7"}) {
    EXPECT_EQ(service.readLine(), line);
  }
  const std::string known = " --mobile=12345 --captcha=AB3DE --code=482913";
  EXPECT_EQ(runShell(SIGNIN_PROGRAM " --connect=" + service.address() + known).status, 0);
  EXPECT_EQ(service.send(SIGTERM).status(), 0);
}

TEST(DevServiceProgram, NeedsAReaderForItsAddress) {
  EXPECT_EQ(orvane::test::endOf(runShell(DEVSERVICE_PROGRAM " --port=0 >/dev/full").status), 1);
}

TEST(DevServiceProgram, IgnoresAnInterruptionThatItsParentIgnores) {
  for (const bool isIgnored : {true, false}) {
    const auto before = std::signal(SIGINT, isIgnored ? SIG_IGN : SIG_DFL);
    const Program service;
    std::signal(SIGINT, before);
    service.send(SIGINT);
    if (isIgnored) {
      EXPECT_EQ(runShell(SIGNIN_PROGRAM " --auto --connect=" + service.address()).status, 0);
      service.send(SIGTERM);
    }
    EXPECT_EQ(service.status(), 0);
  }
}

}  // namespace
