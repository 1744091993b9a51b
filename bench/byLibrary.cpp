#include "bench/byLibrary.h"

#include <memory>
#include <stdexcept>
#include <utility>

#include "bench/Service.h"
#include "orvane/host/HostSession.h"
#include "orvane/host/hostMainQueue.h"
#include "orvane/orvane.h"

namespace orvane::bench {
namespace {

void require(bool condition) {
  if (!condition) throw std::runtime_error("a call by the library failed");
}

HostSessionConfiguration rerouted(std::uint16_t port) {
  HostSessionConfiguration configuration;
  configuration.reroutes = {{std::string(serviceHost()), 80, "127.0.0.1", port}};
  return configuration;
}

/// An ordinary machine's session. It stops the main queue when the report about the device has arrived, since
/// that report has no callback.
class WatchedSession final : public URLSession {
 public:
  explicit WatchedSession(std::uint16_t port) : session_(rerouted(port)) {}

  void startDataTask(URLRequest request, DataTaskHandler handler) override {
    if (request.url().ends_with(reportPath)) {
      handler = [handler = std::move(handler)](DataTaskResult result) {
        handler(std::move(result));
        hostMainQueue().stop();
      };
    }
    session_.startDataTask(std::move(request), std::move(handler));
  }
  void cancelAllOperations() override { session_.cancelAllOperations(); }

 private:
  HostSession session_;
};

}  // namespace

void installBenchPlatform(std::uint16_t port) {
  installPlatform({.sharedSession = std::make_shared<WatchedSession>(port)});
}

Bytes signIn() {
  OrvaneManager& manager = OrvaneManager::shareManager();
  Bytes picture;
  manager.requestPictureCode(mobile, [&](std::optional<Bytes> data, const ErrorPtr& pictureError) {
    require(!pictureError);
    picture = *std::move(data);
    manager.requestCode(mobile, pictureText, [&](const ErrorPtr& codeError) {
      require(!codeError);
      manager.requestLogin(mobile, smsCode, [](const auto&, const ErrorPtr& error) { require(!error); });
    });
  });
  hostMainQueue().run();  // Until the report has arrived, which stops it.
  return picture;
}

void requestCodes(std::size_t count) {
  std::size_t left = count;
  for (std::size_t i = 0; i < count; ++i) {
    OrvaneManager::shareManager().requestCode(mobile, pictureText, [&left](const ErrorPtr& error) {
      require(!error);
      if (--left == 0) hostMainQueue().stop();
    });
  }
  hostMainQueue().run();
}

}  // namespace orvane::bench
