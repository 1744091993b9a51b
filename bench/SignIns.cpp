#include "bench/SignIns.h"

#include <stdexcept>

#include "orvane/client/ServiceCall.h"
#include "orvane/host/HostSession.h"
#include "orvane/host/hostMainQueue.h"
#include "orvane/orvane.h"

namespace orvane::bench {
namespace {

constexpr const char* mobile = "13800138000";
constexpr const char* pictureText = "x7Kp";
constexpr const char* smsCode = "123456";

void require(bool condition) {
  if (!condition) throw std::runtime_error("a call failed");
}

Fields factFields() {
  return {{"mobile", mobile},
          {"deviceModel", OVDeviceInfoTool::getSystemVersion()},
          {"carrier", OVDeviceInfoTool::getcarrierName()},
          {"deviceName", std::string(rawValue(OVDeviceInfoTool::getDeviceName()))},
          {"IMEI", " "},
          {"IMSI", " "}};
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
    if (request.url().ends_with(deviceReportCall.path)) {
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
  hostMainQueue().run();  // Until the facts have arrived, which stops it.
  return picture;
}

Bytes signIn(Client& client, const Codec& codec) {
  Bytes picture = codec.picture(client.post(pictureCodeCall.path, codec.body({{"mobile", mobile}}))).value();
  requestCode(client, codec);
  const std::string login = codec.body({{"mobile", mobile}, {"verificationCode", smsCode}});
  require(codec.message(client.post(loginCall.path, login)).has_value());
  require(codec.message(client.post(deviceReportCall.path, codec.body(factFields()))).has_value());
  return picture;
}

Fields codeFields() {
  return {{"mobile", mobile}, {"captcha", pictureText}};
}

void requestCode() {
  requestCodes(1);
}

void requestCode(Client& client, const Codec& codec) {
  require(codec.message(client.post(codeCall.path, codec.body(codeFields()))).has_value());
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

void startCodes(std::size_t count) {
  for (std::size_t i = 0; i < count; ++i)
    OrvaneManager::shareManager().requestCode(mobile, pictureText, nullptr);
}

}  // namespace orvane::bench
