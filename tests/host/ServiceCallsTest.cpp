// The three calls of a sign-in, through the public interface and over real sockets, with the linked adapter.

#include <gtest/gtest.h>

#include "orvane/host/hostMainQueue.h"
#include "orvane/orvane.h"
#include "tests/support/AdapterUnderTest.h"
#include "tests/support/LoopbackServer.h"

namespace orvane::test {
namespace {

using Answer = LoopbackServer::Answer;
using Request = LoopbackServer::Request;

/// The service, at whose place the whole test program has this server.
LoopbackServer& service() {
  static auto* const server = new LoopbackServer;
  return *server;
}

class ServiceCalls : public testing::Test {
 protected:
  static void SetUpTestSuite() { installAdapter(service().port()); }

  /// Runs the main queue until the call ends. Returns true if `finished` was called on it.
  static bool finish(const std::function<void(std::function<void()> over)>& call) {
    std::thread::id thread;
    call([&thread] {
      thread = std::this_thread::get_id();
      hostMainQueue().stop();
    });
    hostMainQueue().run();
    return thread == std::this_thread::get_id();
  }

  static std::string pictureOutcome(bool* onMainQueue = nullptr) {
    std::string outcome;
    const bool isMain = finish([&](auto over) {
      OrvaneManager().requestPictureCode(
          "139", [&outcome, over](std::optional<Bytes> data, const ErrorPtr& error) {
            outcome = data ? std::string(data->begin(), data->end()) : description(*error);
            over();
          });
    });
    if (onMainQueue) *onMainQueue = isMain;
    return outcome;
  }

  OrvaneManager manager;
};

std::string envelope(const std::string& path, const std::string& identifier) {
  return "POST " + path + " HTTP/1.1\r\nHost: " + std::string(serviceHost()) +
         "\r\nUser-Agent: Orvane/1.0\r\nAccept: */*\r\nContent-Type: application/json\r\n" + identifier +
         "XRAPI-DEVICE-TYPE: 1\r\nXRAPI-VERSION: 1.0\r\nContent-Length: ";
}

/// A request's head without what depends on curl's build, and its body.
std::string recorded(const Request& request) {
  std::string head = request.head;
  const std::size_t encodings = head.find("Accept-Encoding: ");
  head.erase(encodings, head.find("\r\n", encodings) + 2 - encodings);
  return head + "\n" + request.body;
}

TEST_F(ServiceCalls, AWholeSignInOnOneConnection) {
  service().setScript([](const Request& request) {
    const bool isPicture = request.head.find("captcha ") != request.head.npos;
    return Answer{reply(isPicture ? R"({"code":0,"data":[1]})" : R"({"code":0,"msg":"ok"})")};
  });
  const std::size_t before = service().requests().size();
  EXPECT_TRUE(
      finish([&](auto over) { manager.requestPictureCode("139", [over](const auto&...) { over(); }); }));
  manager.setAppClientId("");
  EXPECT_TRUE(finish([&](auto over) { manager.requestCode("139", "aB", [over](const auto&) { over(); }); }));
  manager.setAppClientId("app 1");
  EXPECT_TRUE(
      finish([&](auto over) { manager.requestLogin("139", "123456", [over](const auto&...) { over(); }); }));
  // One more call waits for the submission, if only because the service answers in order.
  EXPECT_TRUE(finish([&](auto over) { manager.requestCode("1", "2", [over](const auto&) { over(); }); }));
  while (service().requests().size() < before + 5) std::this_thread::yield();

  std::vector<Request> requests = service().requests();
  requests.erase(requests.begin(), requests.begin() + static_cast<std::ptrdiff_t>(before));
  const std::string model(rawValue(OVDeviceInfoTool::getDeviceName()));
  const std::string facts = R"({"IMEI":" ","IMSI":" ","carrier":"Carrier","deviceModel":")" +
                            OVDeviceInfoTool::getSystemVersion() + R"(","deviceName":")" + model +
                            R"(","mobile":"139"})";
  EXPECT_EQ(recorded(requests[0]), envelope("/tenant/verify/captcha", "") + "16\n" + R"({"mobile":"139"})");
  EXPECT_EQ(recorded(requests[1]), envelope("/tenant/getVerifyCode", "XRAPI-CLIENT-ID:\r\n") + "31\n" +
                                       R"({"captcha":"aB","mobile":"139"})");
  EXPECT_EQ(recorded(requests[2]), envelope("/tenant/submitVerifyCode", "XRAPI-CLIENT-ID: app 1\r\n") +
                                       "44\n" + R"({"mobile":"139","verificationCode":"123456"})");
  EXPECT_EQ(recorded(requests[3]), envelope("/tenant/submitMobileInformation", "XRAPI-CLIENT-ID: app 1\r\n") +
                                       std::to_string(facts.size()) + "\n" + facts);
  for (int i = 1; i < 4; ++i)
    EXPECT_EQ(requests[static_cast<std::size_t>(i)].connection, requests[0].connection);
}

TEST_F(ServiceCalls, PicturesArriveByteForByte) {
  for (const std::size_t size : {0U, 1U, 255U, 4096U, 20'000U, 1U << 20}) {
    std::string picture;
    std::string list;
    for (std::size_t i = 0; i < size; ++i) {
      picture.push_back(static_cast<char>(i * 31 + i / 256));
      if (i > 0) list += ',';
      list += std::to_string(static_cast<unsigned char>(picture.back()));
    }
    service().setScript(
        [list](const Request&) { return Answer{reply(R"({"code":0,"data":[)" + list + "]}")}; });
    bool onMainQueue = false;
    EXPECT_TRUE(pictureOutcome(&onMainQueue) == picture) << size;
    EXPECT_TRUE(onMainQueue);
  }
}

TEST_F(ServiceCalls, ManyThreadsAtOnceAreAllAnswered) {
  service().setScript([](const Request&) { return Answer{reply(R"({"code":0})")}; });
  constexpr int threads = 4;
  constexpr int calls = 50;
  int left = threads * calls;
  std::vector<std::thread> callers;
  for (int i = 0; i < threads; ++i) {
    callers.emplace_back([&left, i] {
      OrvaneManager own;
      own.setAppClientId(std::to_string(i));
      for (int call = 0; call < calls; ++call) {
        own.requestCode("139", "c", [&left](const ErrorPtr& error) {
          EXPECT_FALSE(error);
          if (--left == 0) hostMainQueue().stop();  // All on the main queue: no race.
        });
      }
    });
  }
  hostMainQueue().run();
  for (std::thread& caller : callers) caller.join();
  EXPECT_EQ(left, 0);
}

}  // namespace
}  // namespace orvane::test
