// Makes one call, TIMES times, and writes one line each time to standard error with what `finished` received.
// It is a program because some calls stop the process, with a line there.
//   oneCall CALL HOST PORT IDLE-MS TOTAL-MS TIMES [WORDS [ADDRESS]]
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
#include "tests/faults/Faults.h"
#include "tests/support/AdapterUnderTest.h"
#include "tests/support/FakeSession.h"

namespace orvane {
namespace {

const std::thread::id mainThread = std::this_thread::get_id();

/// Sends every request to the server with the fault. Accepts the login before a device report itself. Stops
/// the main queue after the last task's handler, so that what it queued still runs, and what that queued.
class Sessions final : public URLSession {
 public:
  Sessions(HostSessionConfiguration faulty, bool acceptsLogins)
      : faulty_(std::move(faulty)), acceptsLogins_(acceptsLogins) {}

  void startDataTask(URLRequest request, DataTaskHandler handler) override {
    ++open_;
    const auto handle = [this, handler](DataTaskResult result) {
      handler(std::move(result));
      hostMainQueue().async([this] {
        hostMainQueue().async([this] {
          if (--open_ == 0) hostMainQueue().stop();
        });
      });
    };
    if (acceptsLogins_ && request.url().ends_with("/submitVerifyCode"))
      return hostMainQueue().async([handle] { handle(test::replied(R"({"code":0,"msg":"ok"})")); });
    faulty_.startDataTask(std::move(request), handle);
  }
  void cancelAllOperations() override {}

 private:
  HostSession faulty_;
  bool acceptsLogins_;
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
  }
  if (!isComplete) line += ", the other argument amiss";
  const bool isOnMainThread = std::this_thread::get_id() == mainThread;
  if (isOnMainThread == (isOfTransport && !isAwaited)) line += ", on the wrong thread";
  std::fprintf(stderr, "%s\n", line.c_str());
}

// What `finished` receives, for each of the calls.
constexpr auto writePicture = [](const std::optional<Bytes>& data, const ErrorPtr& error) {
  write(error, error ? !data : data == Bytes{1, 2, 3});
};
constexpr auto writeCode = [](const ErrorPtr& error) { write(error, true); };
constexpr auto writeLogin = [](const std::optional<std::string>& message, const ErrorPtr& error) {
  write(error, message == (error ? error->domain : "ok"));
};

void call(OrvaneManager& manager, const std::string& name) {
  if (name == "requestPictureCode") {
    manager.requestPictureCode("139", writePicture);
  } else if (name == "requestCode") {
    manager.requestCode("139", "aB", writeCode);
  } else {
    manager.requestLogin("139", "1", writeLogin);
  }
}

Detached awaitCall(OrvaneManager& manager, std::string name) {
  if (name == "requestPictureCode") {
    const auto picture = co_await requestPictureCode(manager, "139");
    writePicture(picture.value, picture.error);
  } else if (name == "requestCode") {
    writeCode((co_await requestCode(manager, "139", "aB")).error);
  } else {
    const auto login = co_await requestLogin(manager, "139", "1");
    writeLogin(login.value, login.error);
  }
}

}  // namespace
}  // namespace orvane

int main(int count, char** arguments) {
  using namespace orvane;
  if (count < 7 || count > 9) return 2;
  const auto number = [&](int at) { return std::strtoull(arguments[at], nullptr, 10); };
  const std::string name = arguments[1];
  isAwaited = count == 9;
  ::alarm(60);
  HostSessionConfiguration faulty{.idleTimeout = std::chrono::milliseconds(number(4)),
                                  .totalTimeout = std::chrono::milliseconds(number(5)),
                                  .maximumBodySize = test::bodyLimit,
                                  .reroutes = {{isAwaited ? "own.example" : std::string(serviceHost()), 80,
                                                arguments[2], static_cast<std::uint16_t>(number(3))}}};
  Platform platform;
  platform.sharedSession =
      test::makeSession(std::make_shared<Sessions>(std::move(faulty), name == "device report"));
  if (count > 7) platform.failureWords = [words = arguments[7]](const Error&) { return words; };
  if (isAwaited)
    platform.sharedSession = std::make_shared<ReaddressedSession>(platform.sharedSession, arguments[8]);
  installPlatform(std::move(platform));
  for (auto left = number(6); left > 0; --left) {
    if (isAwaited) {
      awaitCall(OrvaneManager::shareManager(), name);
    } else {
      call(OrvaneManager::shareManager(), name);
    }
    hostMainQueue().run();
  }
}
