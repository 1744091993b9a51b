#pragma once

#include <chrono>
#include <cstdint>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>

#include "tools/devservice/IdentityService.h"
#include "tools/devservice/Router.h"

namespace devservice {

inline const std::string number = "+4915112345678";

inline HTTPRequest post(std::string path, const nlohmann::json& body) {
  const decltype(HTTPRequest::headers) headers = {{"content-type", "application/json; charset=utf-8"},
                                                  {"XRAPI-Version", "1.0"},
                                                  {"XRAPI-DEVICE-TYPE", "1"}};
  return {"POST", std::move(path), headers, body.dump(), "127.0.0.1"};
}

inline HTTPRequest askPicture(const std::string& mobile) {
  return post("/tenant/verify/captcha", {{"mobile", mobile}});
}

inline HTTPRequest askCode(const std::string& mobile, const std::string& text) {
  return post("/tenant/getVerifyCode", {{"mobile", mobile}, {"captcha", text}});
}

inline HTTPRequest logIn(const std::string& code) {
  return post("/tenant/submitVerifyCode", {{"mobile", number}, {"verificationCode", code}});
}

/// Returns a request as the page on this machine sends it.
inline HTTPRequest local(std::string path, std::string query = "", std::string method = "GET",
                         std::string body = "") {
  const decltype(HTTPRequest::headers) headers = {{"Host", "localhost"}, {"Origin", "http://localhost"}};
  return {std::move(method), std::move(path), headers, std::move(body), "127.0.0.1", std::move(query)};
}

/// A service with a clock and a random source that the test sets.
struct ServiceBench {
  TimePoint now{};
  std::uint32_t bits = 0;  // 0 makes the picture AAAA and the code 000000; ~0 makes 99999 and 999999.
  // The callback asks the service, which must not hold its lock then.
  IdentityService service{{[this](auto to, auto text) { EXPECT_EQ(service.inspect(to)->message, text); },
                           [this] { return now; }, [this] { return bits; }}};
  Router router{service, {"identity.test", "localhost", "127.0.0.1:8080"}, {}};

  nlohmann::json codeOf(const HTTPRequest& request) {
    return nlohmann::json::parse(service.answer(request).body)["code"];
  }
};

}  // namespace devservice
