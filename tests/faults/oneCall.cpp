// Makes one call, TIMES times, and writes one line each time with what `finished` received. It is a program
// because some calls stop the process.
//   oneCall CALL SOUND-PORT HOST PORT IDLE-MS TOTAL-MS BODY-LIMIT TIMES [WORDS [ADDRESS]]
// With WORDS a call that would stop the process reports these words instead. With ADDRESS, whose host is
// "own.example", the requests go there, and the calls are awaited.

#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <unistd.h>

#include "orvane/await.h"
#include "orvane/host/HostSession.h"
#include "orvane/host/hostMainQueue.h"
#include "orvane/orvane.h"
#include "tests/support/AdapterUnderTest.h"

namespace orvane {
namespace {

const std::thread::id mainThread = std::this_thread::get_id();

/// Sends every request to the server with the fault, except the login before a device report, which goes to a
/// sound one. Stops the main queue after the handler of the last task, so that what it queued still runs, and
/// what that queued.
class Sessions final : public URLSession {
 public:
  Sessions(HostSessionConfiguration faulty, std::uint16_t soundPort, bool isLoginSound)
      : sound_({.reroutes = {{faulty.reroutes[0].host, 80, "127.0.0.1", soundPort}}}),
        faulty_(std::move(faulty)),
        isLoginSound_(isLoginSound) {}

  void startDataTask(URLRequest request, DataTaskHandler handler) override {
    ++open_;
    const bool isSound = isLoginSound_ && request.url().ends_with("/submitVerifyCode");
    (isSound ? sound_ : faulty_).startDataTask(std::move(request), [this, handler](DataTaskResult result) {
      handler(std::move(result));
      hostMainQueue().async([this] {
        hostMainQueue().async([this] {
          if (--open_ == 0) hostMainQueue().stop();
        });
      });
    });
  }
  void cancelAllOperations() override {}

 private:
  HostSession sound_;
  HostSession faulty_;
  bool isLoginSound_;
  int open_ = 0;  // The main thread's.
};

bool isAwaited = false;

void write(const ErrorPtr& error, bool isComplete) {
  std::string line = "success";
  bool isOfTransport = false;
  if (error) {
    line = error->domain + " " + std::to_string(error->code);
    isOfTransport = error->domain == NetworkTool::errorDomain || error->domain == "NSURLErrorDomain";
    if (isOfTransport == error->userInfo.empty()) line += ", user information amiss";
    if (error->cause) line += " for " + error->cause->domain + " " + std::to_string(error->cause->code);
    if ((errorKind(*error) == ErrorKind::refused) != (!isOfTransport && !error->cause))
      line += ", kind amiss";
  }
  if (!isComplete) line += ", the other argument amiss";
  const bool isOnMainThread = std::this_thread::get_id() == mainThread;
  if (isOnMainThread == (isOfTransport && !isAwaited)) line += ", on the wrong thread";
  std::puts(line.c_str());
  std::fflush(stdout);
}

bool isWhole(const std::optional<Bytes>& data, const ErrorPtr& error) {
  return error ? !data : data == Bytes{1, 2, 3};
}

bool isWhole(const std::optional<std::string>& message, const ErrorPtr& error) {
  return message == (error ? error->domain : "ok");
}

void call(OrvaneManager& manager, const std::string& name) {
  if (name == "requestPictureCode") {
    manager.requestPictureCode(
        "139", [](const auto& data, const ErrorPtr& error) { write(error, isWhole(data, error)); });
  } else if (name == "requestCode") {
    manager.requestCode("139", "aB", [](const ErrorPtr& error) { write(error, true); });
  } else {
    manager.requestLogin("139", "1", [](const auto& message, const ErrorPtr& error) {
      write(error, isWhole(message, error));
    });
  }
}

Detached awaitCall(OrvaneManager& manager, std::string name) {
  if (name == "requestPictureCode") {
    const auto picture = co_await requestPictureCode(manager, "139");
    write(picture.error, isWhole(picture.value, picture.error));
  } else if (name == "requestCode") {
    write((co_await requestCode(manager, "139", "aB")).error, true);
  } else {
    const auto login = co_await requestLogin(manager, "139", "1");
    write(login.error, isWhole(login.value, login.error));
  }
}

}  // namespace
}  // namespace orvane

int main(int count, char** arguments) {
  using namespace orvane;
  if (count < 9 || count > 11) return 2;
  const auto number = [&](int at) { return std::strtoull(arguments[at], nullptr, 10); };
  const auto port = [&](int at) { return static_cast<std::uint16_t>(number(at)); };
  const std::string name = arguments[1];
  isAwaited = count == 11;
  ::alarm(60);
  HostSessionConfiguration faulty{
      .idleTimeout = std::chrono::milliseconds(number(5)),
      .totalTimeout = std::chrono::milliseconds(number(6)),
      .maximumBodySize = number(7),
      .reroutes = {{isAwaited ? "own.example" : std::string(serviceHost()), 80, arguments[3], port(4)}}};
  Platform platform;
  platform.sharedSession =
      test::makeSession(std::make_shared<Sessions>(std::move(faulty), port(2), name == "device report"));
  if (count > 9) platform.failureWords = [words = arguments[9]](const Error&) { return words; };
  if (isAwaited)
    platform.sharedSession = std::make_shared<ReaddressedSession>(platform.sharedSession, arguments[10]);
  installPlatform(std::move(platform));
  for (auto left = number(8); left > 0; --left) {
    if (isAwaited) {
      awaitCall(OrvaneManager::shareManager(), name);
    } else {
      call(OrvaneManager::shareManager(), name);
    }
    hostMainQueue().run();
  }
}
