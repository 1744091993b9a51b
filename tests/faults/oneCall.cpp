// Makes one call, TIMES times, and writes one line each time with what `finished` received. It is a program
// because some calls stop the process.
//   oneCall CALL SOUND-PORT HOST PORT IDLE-MS TOTAL-MS BODY-LIMIT TIMES [MESSAGE]
// With MESSAGE the session is guarded: a call that would stop the process reports this message instead.

#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <unistd.h>

#include "orvane/host/HostSession.h"
#include "orvane/host/hostMainQueue.h"
#include "orvane/orvane.h"
#include "tests/support/AdapterUnderTest.h"

namespace orvane {
namespace {

const std::thread::id mainThread = std::this_thread::get_id();

/// Sends every request to the server with the fault, except the login before a device report, which goes to a
/// sound one. Stops the main queue after the handler of the last task, so that what it queued still runs.
class Sessions final : public URLSession {
 public:
  Sessions(HostSessionConfiguration faulty, std::uint16_t soundPort, bool isLoginSound)
      : faulty_(std::move(faulty)),
        sound_({.reroutes = {{std::string(serviceHost()), 80, "127.0.0.1", soundPort}}}),
        isLoginSound_(isLoginSound) {}

  void startDataTask(URLRequest request, DataTaskHandler handler) override {
    ++open_;
    const bool isSound = isLoginSound_ && request.url().ends_with("/submitVerifyCode");
    (isSound ? sound_ : faulty_).startDataTask(std::move(request), [this, handler](DataTaskResult result) {
      handler(std::move(result));
      hostMainQueue().async([this] {
        if (--open_ == 0) hostMainQueue().stop();
      });
    });
  }
  void cancelAllOperations() override {}

 private:
  HostSession faulty_;
  HostSession sound_;
  bool isLoginSound_;
  int open_ = 0;  // The main thread's.
};

void write(const ErrorPtr& error, bool isComplete) {
  std::string line = "success";
  bool isOfTransport = false;
  if (error) {
    line = error->domain + " " + std::to_string(error->code);
    isOfTransport = error->domain == NetworkTool::errorDomain || error->domain == "NSURLErrorDomain";
    if (isOfTransport == error->userInfo.empty()) line += ", user information amiss";
  }
  if (!isComplete) line += ", the other argument amiss";
  if (isOfTransport == (std::this_thread::get_id() == mainThread)) line += ", on the wrong thread";
  std::puts(line.c_str());
  std::fflush(stdout);
}

void call(OrvaneManager& manager, const std::string& name) {
  if (name == "requestPictureCode") {
    manager.requestPictureCode("139", [](const std::optional<Bytes>& data, const ErrorPtr& error) {
      write(error, error ? !data : data == Bytes{1, 2, 3});
    });
  } else if (name == "requestCode") {
    manager.requestCode("139", "aB", [](const ErrorPtr& error) { write(error, true); });
  } else {
    manager.requestLogin("139", "1", [](const std::optional<std::string>& message, const ErrorPtr& error) {
      write(error, message == (error ? error->domain : "ok"));
    });
  }
}

}  // namespace
}  // namespace orvane

int main(int count, char** arguments) {
  using namespace orvane;
  if (count < 9 || count > 10) return 2;
  const auto number = [&](int at) { return std::strtoull(arguments[at], nullptr, 10); };
  const auto port = [&](int at) { return static_cast<std::uint16_t>(number(at)); };
  const std::string name = arguments[1];
  ::alarm(60);
  HostSessionConfiguration faulty{.idleTimeout = std::chrono::milliseconds(number(5)),
                                  .totalTimeout = std::chrono::milliseconds(number(6)),
                                  .maximumBodySize = number(7),
                                  .reroutes = {{std::string(serviceHost()), 80, arguments[3], port(4)}}};
  std::shared_ptr<URLSession> session =
      test::makeSession(std::make_shared<Sessions>(std::move(faulty), port(2), name == "device report"));
  if (count == 10) session = std::make_shared<GuardedSession>(std::move(session), arguments[9]);
  installPlatform({.sharedSession = std::move(session)});
  for (auto left = number(8); left > 0; --left) {
    call(OrvaneManager::shareManager(), name);
    hostMainQueue().run();
  }
}
