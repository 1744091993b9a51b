#include <tuple>
#include <vector>

#include "tests/tools/ServiceBench.h"

namespace devservice {
namespace {

using Json = nlohmann::json;
using namespace std::chrono;

TEST(IdentityService, RefusesMalformedRequests) {
  const HTTPRequest good = askPicture("12345");
  const auto with = [&](const std::string& body) {
    return HTTPRequest{"POST", good.path, good.headers, body, ""};
  };
  const auto withField = [&](const std::string& name, const std::string& value) {
    HTTPRequest request = good;
    request.headers.insert(request.headers.begin(), {name, value});  // The first one counts.
    return request;
  };
  const std::string filler(maxBodySize - good.body.size(), ' ');
  const std::string longest(maxTextSize, 'a');
  const std::tuple<std::string, HTTPRequest, int, int> cases[] = {
      {"path", post(good.path + "/", {}), 404, 1006},
      {"method", {"GET", good.path, {}, "", ""}, 405, 1007},
      {"largest body", with(good.body + filler), 200, 0},
      {"too large a body", with(good.body + filler + " "), 413, 1005},
      {"not UTF-8", with("{\"mobile\":\"\xff\"}"), 200, 1001},
      {"deep nesting", with(std::string(30'000, '[') + std::string(30'000, ']')), 200, 1001},
      {"missing member", with("{}"), 200, 1003},
      {"not a string", with(R"({"mobile":12345})"), 200, 1003},
      {"unknown member", with(R"({"mobile":"12345","a":""})"), 200, 1003},
      {"longest member", askCode("12345", longest), 200, 2001},
      {"too long a member", askCode("12345", longest + "a"), 200, 1003},
      {"longest number", askPicture("+123456789012345"), 200, 0},
      {"too long a number", askPicture("1234567890123456"), 200, 1004},
      {"too short a number", askPicture("+1234"), 200, 1004},
      {"letter in a number", askPicture("12345a"), 200, 1004},
      {"content type", withField("content-type", "application/jso"), 200, 1002},
      {"version", withField("XRAPI-VERSION", ""), 200, 1002},
      {"device type", withField("XRAPI-DEVICE-TYPE", "2"), 200, 1002},
      {"longest client identifier", withField("xrapi-client-id", longest), 200, 0},
      {"too long a client identifier", withField("xrapi-client-id", longest + "a"), 200, 1002},
  };
  for (const auto& [label, request, status, code] : cases) {
    const HTTPReply reply = ServiceBench().service.answer(request);
    const Json object = Json::parse(reply.body);
    EXPECT_EQ(reply.status, status) << label;
    EXPECT_EQ(object["code"], code) << label;
    EXPECT_EQ(object["data"].is_array(), code == 0) << label;
  }
}

TEST(IdentityService, KeepsTheRulesOfSigningIn) {
  struct Step {
    const HTTPRequest& call;
    int code;
    milliseconds wait{0};  // Before the call.
  };
  const HTTPRequest picture = askPicture(number);
  const HTTPRequest read = askCode(number, "aaaa"), enter = logIn("000000");  // The first picture's.
  const HTTPRequest readSecond = askCode(number, "99999"), enterSecond = logIn("999999");  // A later one's.
  const HTTPRequest misread = askCode(number, "aaa"), mistype = logIn("00000");
  Json facts = {{"mobile", number}, {"deviceName", "Döröthé"}};
  for (const auto name : {"deviceModel", "carrier", "IMEI", "IMSI"}) facts[name] = "";
  const HTTPRequest submit = post("/tenant/submitMobileInformation", facts);
  const Step get{picture, 0}, good{read, 0}, wrong{mistype, 3002};
  const std::pair<std::string, std::vector<Step>> rules[] = {
      {"each call needs the one before it", {{read, 2001}, {enter, 3001}, {submit, 4001}}},
      {"a picture and a code are used up", {get, good, {read, 2001}, {enter, 0}, {enter, 3001}}},
      {"a login lasts", {get, good, {submit, 4001}, {enter, 0}, get, {readSecond, 0}, wrong, {submit, 0}}},
      {"a misread picture is used up", {get, {misread, 2002}, {read, 2001}}},
      {"a new picture replaces the old one", {get, get, {read, 2002}}},
      {"a new code replaces the old one", {get, good, get, {readSecond, 0}, {enter, 3002}, {enterSecond, 0}}},
      {"a picture lasts 5 minutes", {get, {read, 0, secretLifetime - 1ms}}},
      {"a picture expires", {get, {read, 2001, secretLifetime}}},
      {"a code lasts 5 minutes", {get, good, {enter, 0, secretLifetime - 1ms}}},
      {"a code expires", {get, good, {enter, 3001, secretLifetime}}},
      {"five wrong tries use up a code", {get, good, wrong, wrong, wrong, wrong, wrong, {enter, 3001}}},
      {"a new code has new tries",
       {get, good, wrong, wrong, wrong, wrong, get, {readSecond, 0}, wrong, {enterSecond, 0}}},
  };
  for (const auto& [rule, steps] : rules) {
    ServiceBench bench;
    for (std::size_t i = 0; i < steps.size(); ++i) {
      if (&steps[i].call == &picture && i > 0) bench.bits = ~0u;
      bench.now += steps[i].wait;
      EXPECT_EQ(bench.codeOf(steps[i].call), steps[i].code) << rule << ", call " << i;
    }
  }
}

TEST(IdentityService, LimitsWhatItKeeps) {
  ServiceBench bench;
  for (std::size_t i = 0; i < 3 * maxNumbers; ++i) {
    bench.service.answer(askCode(std::to_string(10'000 + i), ""));
    if (i % (maxNumbers - 1) == 5) bench.service.answer(askCode("10005", ""));
  }
  for (std::size_t i = 0; i <= maxMessages; ++i) {
    bench.service.answer(askPicture(number));
    bench.service.answer(askCode(number, "AAAA"));
  }
  const std::string large(9000, '/'), cut(maxLogText, '/');
  const Json body = {{"mobile", large}, {"captcha", "s3cret"}, {"x", 1}};
  for (std::size_t i = 0; i <= maxLogEntries; ++i)
    bench.router.log({large, large, {}, body.dump(), ""}, {.body = large});
  const Json state = Json::parse(bench.router.answer(local("/page/state")).body);
  const Json asked = Json::parse(bench.router.answer(local("/inspect/requests", "unmasked=1")).body);
  EXPECT_EQ(bench.service.recent(3 * maxNumbers).size(), maxNumbers);
  EXPECT_TRUE(bench.service.inspect("10005"));
  EXPECT_FALSE(bench.service.inspect("10006"));
  EXPECT_EQ(state["messages"].size(), maxMessages);
  EXPECT_EQ(asked.size(), maxLogEntries);
  const Json members = {{"mobile", cut}, {"captcha", "s3cret"}};
  for (const auto part : {"method", "path", "mobile"}) EXPECT_EQ(asked[0][part], cut) << part;
  EXPECT_EQ(asked[0]["members"], members);
  EXPECT_EQ(state["numbers"].size(), maxShownNumbers);
}

TEST(IdentityService, LimitsWrongCodesPerHour) {
  ServiceBench bench;
  bench.bits = ~0u;
  const auto askAnother = [&] {
    bench.codeOf(askPicture(number));
    bench.codeOf(askCode(number, "99999"));
  };
  for (int tries = 0; tries < maxWrongCodes; ++tries) {
    if (tries == 1) bench.now += 30min;  // The hour starts with the first.
    if (tries % codeAttempts == 0 || tries == 1) askAnother();
    EXPECT_EQ(bench.codeOf(logIn("0")), 3002) << tries;
  }
  bench.now += 30min - 1ms;
  askAnother();
  EXPECT_EQ(bench.codeOf(logIn("999999")), 3003);
  bench.now += 1ms;
  EXPECT_EQ(bench.codeOf(logIn("999999")), 0);
}

TEST(IdentityService, IsPredictableWhenAsked) {
  const auto picturesAndCodes = [](IdentityService& service) {
    std::vector<std::string> all;
    for (const char* mobile : {"12345", "12346", "12345"}) {
      all.push_back(service.answer(askPicture(mobile)).body);
      service.answer(askCode(mobile, service.inspect(mobile)->picture.value()));
      all.push_back(service.inspect(mobile)->code.value());
    }
    return all;
  };
  IdentityService first({}, {.seed = 7}), second({}, {.seed = 7}), other({}, {.seed = 8});
  const auto expected = picturesAndCodes(first);
  EXPECT_EQ(picturesAndCodes(second), expected);
  EXPECT_NE(picturesAndCodes(first), expected);
  EXPECT_NE(picturesAndCodes(other), expected);
  first.forget();
  EXPECT_EQ(picturesAndCodes(first), expected);
}

TEST(IdentityService, SpoilsRepliesOnDemand) {
  const std::pair<std::string, bool (*)(const HTTPReply&, Json)> cases[] = {
      {"06", [](auto& reply, auto) { return reply.body.empty(); }},
      {"07", [](auto& reply, auto json) { return reply.status == 500 && json["data"].is_array(); }},
      {"08", [](auto&, auto json) { return json["code"] == 4321 && json["msg"].is_string(); }},
      {"09", [](auto&, auto json) { return json.size() == 2 && !json.contains("code"); }},
      {"11", [](auto&, auto json) { return json.size() == 2 && !json.contains("data"); }},
      {"12", [](auto&, auto json) { return json["code"] == "0"; }},
      {"13", [](auto&, auto json) { return json["msg"].is_number(); }},
      {"14", [](auto&, auto json) { return json["data"].is_string(); }},
      {"15", [](auto&, auto json) { return json["data"].size() > 1 && json["data"].back() == 256; }},
      {"16", [](auto&, auto json) { return json.is_array(); }},
      {"17", [](auto&, auto json) { return json["data"].size() == 1 << 20 && json["data"][1] == 'P'; }},
      {"18", [](auto& reply, auto) { return reply.fault == TransportFault::silence; }},
      {"01", [](auto& reply, auto) { return reply.delay == 1500ms; }},
      {"016000", [](auto& reply, auto) { return reply.delay == 60s; }},
      {"016001", [](auto& reply, auto) { return reply.fault == TransportFault::none; }},
      {"19", [](auto&, auto json) { return json["code"] == 0; }},
  };
  for (const auto& [fault, holds] : cases) {
    ServiceBench bench;
    const std::string mobile = "+999000001" + fault;
    const HTTPReply reply = bench.service.answer(askPicture(mobile));
    EXPECT_TRUE(holds(reply, Json::parse(reply.body, nullptr, false))) << fault;
    // Only a refusal keeps the call from being done, and the other calls are as usual.
    EXPECT_EQ(bench.codeOf(askCode(mobile, "AAAA")), fault == "08" ? 2001 : 0) << fault;
  }
}

}  // namespace
}  // namespace devservice
