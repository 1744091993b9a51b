// A sign-in through the public interface and over real sockets, byte for byte.

#include <gtest/gtest.h>

#include "orvane/host/HostDeviceReadings.h"
#include "orvane/host/HostSession.h"
#include "orvane/host/hostMainQueue.h"
#include "orvane/orvane.h"
#include "tests/host/sentBytes.h"
#include "tests/support/LoopbackServer.h"
#include "tests/support/asText.h"

namespace orvane::test {
namespace {

using Answer = LoopbackServer::Answer;
using Request = LoopbackServer::Request;

std::string call(const std::string& path, const std::string& identifier, const std::string& body) {
  return "POST " + path + " HTTP/1.1\r\nHost: " + std::string(serviceHost()) +
         "\r\nUser-Agent: Orvane/1.0\r\nAccept: */*\r\nContent-Type: application/json\r\n" + identifier +
         "XRAPI-DEVICE-TYPE: 1\r\nXRAPI-VERSION: 1.0\r\nContent-Length: " + std::to_string(body.size()) +
         "\n" + body;
}

TEST(ServiceCalls, AWholeSignInOnOneConnection) {
  LoopbackServer server(
      [](const Request&) { return Answer{reply(R"({"code":0,"msg":"ok","data":[0,7,255]})")}; });
  installPlatform(
      {.sharedSession = std::make_shared<HostSession>(HostSessionConfiguration{
           .keepAlive = std::chrono::minutes(1),
           .reroutes = {{std::string(serviceHost()), 80, "127.0.0.1", server.port()}}}),
       .deviceReadings = std::make_shared<HostDeviceReadings>(HostDeviceFacts{.carrierName = "Carrier"})});
  OrvaneManager manager;
  std::string received;
  const auto stop = [](const auto&...) { hostMainQueue().stop(); };
  manager.requestPictureCode("139", [&](const auto& data, const ErrorPtr&) {
    received = asText(data);
    hostMainQueue().stop();
  });
  hostMainQueue().run();
  EXPECT_EQ(received, std::string("\0\7\xFF", 3));
  manager.setAppClientId("");
  manager.requestCode("139", "aB", stop);
  hostMainQueue().run();
  manager.setAppClientId("app 1");
  manager.requestLogin("139", "123456", stop);
  hostMainQueue().run();
  while (server.requests().size() < 4) std::this_thread::yield();

  const std::vector<Request> requests = server.requests();
  const std::string identifier = "XRAPI-CLIENT-ID: app 1\r\n";
  const std::string facts = R"({"IMEI":" ","IMSI":" ","carrier":"Carrier","deviceModel":")" +
                            OVDeviceInfoTool::getSystemVersion() + R"(","deviceName":")" +
                            std::string(rawValue(OVDeviceInfoTool::getDeviceName())) + R"(","mobile":"139"})";
  EXPECT_EQ(sentBytes(requests[0]), call("/tenant/verify/captcha", "", R"({"mobile":"139"})"));
  EXPECT_EQ(sentBytes(requests[1]),
            call("/tenant/getVerifyCode", "XRAPI-CLIENT-ID:\r\n", R"({"captcha":"aB","mobile":"139"})"));
  EXPECT_EQ(sentBytes(requests[2]),
            call("/tenant/submitVerifyCode", identifier, R"({"mobile":"139","verificationCode":"123456"})"));
  EXPECT_EQ(sentBytes(requests[3]), call("/tenant/submitMobileInformation", identifier, facts));
  for (const Request& request : requests) EXPECT_EQ(request.connection, 1);
}

}  // namespace
}  // namespace orvane::test
