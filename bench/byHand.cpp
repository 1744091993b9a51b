#include "bench/byHand.h"

#include <httplib.h>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <thread>
#include <utility>

#include "bench/CurlPost.h"
#include "bench/Service.h"
#include "orvane/host/hostMainQueue.h"
#include "orvane/orvane.h"

namespace orvane::bench {
namespace {

using nlohmann::json;

void require(bool condition) {
  if (!condition) throw std::runtime_error("a call by hand failed");
}

json readAccepted(const std::string& reply) {
  json document = json::parse(reply);
  require(document.at("code").get<int>() == 0);
  return document;
}

}  // namespace

Post curlEasy(std::uint16_t port) {
  return [curl = std::make_shared<CurlPost>(port)](std::string_view path,
                                                   const std::string& body) -> const std::string& {
    curl->prepare(path, body);
    require(curl_easy_perform(curl->handle()) == CURLE_OK);
    return curl->reply();
  };
}

Post httplib(std::uint16_t port) {
  const auto client = std::make_shared<::httplib::Client>("127.0.0.1", port);
  client->set_tcp_nodelay(true);
  client->set_keep_alive(true);
  const ::httplib::Headers headers = {{"Host", std::string(serviceHost())},
                                      {"Accept-Encoding", "gzip, deflate"},
                                      {"XRAPI-VERSION", "1.0"},
                                      {"XRAPI-DEVICE-TYPE", "1"}};
  return [client, headers, reply = std::string()](std::string_view path,
                                                  const std::string& body) mutable -> const std::string& {
    ::httplib::Result result = client->Post(std::string(path), headers, body, "application/json");
    require(result != nullptr);
    return reply = std::move(result->body);
  };
}

Post handedOver(Post post) {
  const auto jobs = std::make_shared<MainQueue>();
  std::thread([jobs] { jobs->run(); }).detach();
  return [jobs, post = std::move(post), reply = std::string()](
             std::string_view path, const std::string& body) mutable -> const std::string& {
    jobs->async([&post, &reply, path = std::string(path), body] {
      hostMainQueue().async([&reply, received = post(path, body)]() mutable {
        reply = std::move(received);
        hostMainQueue().stop();
      });
    });
    hostMainQueue().run();
    return reply;
  };
}

std::string codeBody() {
  return json::object({{"mobile", mobile}, {"captcha", pictureText}}).dump();
}

Bytes readPicture(const std::string& reply) {
  const json document = readAccepted(reply);
  const json& data = document.at("data");
  Bytes picture;
  picture.reserve(data.size());
  for (const json& element : data) {
    const int value = element.get<int>();
    require(value >= 0 && value <= 255);
    picture.push_back(static_cast<std::uint8_t>(value));
  }
  return picture;
}

std::string readMessage(const std::string& reply) {
  return readAccepted(reply).at("msg").get<std::string>();
}

Bytes signIn(const Post& post) {
  Bytes picture = readPicture(post(picturePath, json::object({{"mobile", mobile}}).dump()));
  requestCode(post);
  readMessage(post(loginPath, json::object({{"mobile", mobile}, {"verificationCode", smsCode}}).dump()));
  const json report = {{"mobile", mobile},
                       {"deviceModel", OVDeviceInfoTool::getSystemVersion()},
                       {"carrier", OVDeviceInfoTool::getcarrierName()},
                       {"deviceName", rawValue(OVDeviceInfoTool::getDeviceName())},
                       {"IMEI", " "},
                       {"IMSI", " "}};
  readMessage(post(reportPath, report.dump()));
  return picture;
}

void requestCode(const Post& post) {
  readMessage(post(codePath, codeBody()));
}

}  // namespace orvane::bench
