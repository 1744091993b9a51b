#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <netinet/in.h>
#include <nlohmann/json.hpp>
#include <optional>
#include <poll.h>
#include <set>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <thread>
#include <tuple>
#include <unistd.h>
#include <utility>
#include <vector>

#include "tools/devservice/IdentityService.h"
#include "tools/devservice/Page.h"
#include "tools/devservice/Router.h"
#include "tools/devservice/Server.h"
#include "tools/devservice/Target.h"
#include "tools/devservice/drawPicture.h"
#include "tools/devservice/glyphStrokes.h"

namespace devservice {
namespace {

using Json = nlohmann::json;
using namespace std::chrono;

const std::string number = "+4915112345678";

HTTPRequest post(std::string path, std::string body) {
  const decltype(HTTPRequest::headers) headers = {{"content-type", "application/json; charset=utf-8"},
                                                  {"XRAPI-Version", "1.0"},
                                                  {"XRAPI-DEVICE-TYPE", "1"}};
  return {"POST", std::move(path), headers, std::move(body), "127.0.0.1"};
}

HTTPRequest askPicture(const std::string& mobile) {
  return post("/tenant/verify/captcha", Json{{"mobile", mobile}}.dump());
}

HTTPRequest askCode(const std::string& mobile, const std::string& text) {
  return post("/tenant/getVerifyCode", Json{{"mobile", mobile}, {"captcha", text}}.dump());
}

HTTPRequest login(const std::string& code) {
  return post("/tenant/submitVerifyCode", Json{{"mobile", number}, {"verificationCode", code}}.dump());
}

/// From the page of a service on this machine; with a body, to change something.
HTTPRequest local(std::string path, std::optional<std::string> body = std::nullopt) {
  return {body ? "POST" : "GET",
          std::move(path),
          {{"Host", "localhost"}, {"Origin", "http://localhost"}},
          body.value_or(""),
          "127.0.0.1"};
}

/// A service whose time and chance the test holds.
struct Bench {
  TimePoint now{};
  std::uint32_t bits = 0;  // none set: the picture AAAA and the code 000000; all set: 99999 and 999999
  // What delivers messages asks the service back, which must not be locked then.
  IdentityService service{{[this](auto to, auto text) { EXPECT_EQ(service.inspect(to)->message, text); },
                           [this] { return now; }, [this] { return bits; }}};
  Router router{service, {"identity.test", "localhost", "127.0.0.1:8080"}, {}};

  Json call(const HTTPRequest& request) { return Json::parse(service.answer(request).body); }
};

TEST(DevService, RefusesMalformedRequests) {
  const HTTPRequest good = askPicture("12345");
  const auto with = [&](const std::string& body) { return post(good.path, body); };
  const std::string filler(maxBodySize - good.body.size(), ' ');
  std::vector<std::tuple<HTTPRequest, int, int>> cases = {
      {{"POST", good.path + "/", {}, "", ""}, 404, 1006},
      {{"GET", good.path, {}, "", ""}, 405, 1007},
      {with(good.body + filler), 200, 0},
      {with(good.body + filler + " "), 413, 1005},
      {with("{\"mobile\":\"\xff\"}"), 200, 1001},
      {with(std::string(30'000, '[') + std::string(30'000, ']')), 200, 1001},
      {with("{}"), 200, 1003},
      {with(R"({"mobile":12345})"), 200, 1003},
      {with(R"({"mobile":"12345","a":""})"), 200, 1003},
      {askPicture("+123456789012345"), 200, 0},
      {askPicture("1234567890123456"), 200, 1004},
      {askPicture("+1234"), 200, 1004},
      {askPicture("12345a"), 200, 1004},
  };
  for (const std::size_t size : {maxTextSize, maxTextSize + 1}) {
    const int excess = size > maxTextSize ? 1 : 0;
    const std::string text(size, 'a');
    cases.emplace_back(askCode("12345", text), 200, excess ? 1003 : 2001);
    std::get<HTTPRequest>(cases.emplace_back(good, 200, excess ? 1002 : 0))
        .headers.emplace_back("xrapi-client-id", text);
  }
  for (std::size_t i = 0; i < 3; ++i) {
    std::get<HTTPRequest>(cases.emplace_back(good, 200, 1002)).headers[i].first += "x";
    std::get<HTTPRequest>(cases.emplace_back(good, 200, 1002)).headers[i].second.front() = '?';
  }
  for (const auto& [request, status, code] : cases) {
    const HTTPReply reply = Bench().service.answer(request);
    Json object = Json::parse(reply.body);
    EXPECT_EQ(reply.status, status) << request.path;
    EXPECT_EQ(object["code"], code) << request.body.substr(0, 40) << testing::PrintToString(request.headers);
    EXPECT_EQ(object["data"].is_array(), code == 0);
  }
}

// A call, a small letter, is followed by its outcome; > is a millisecond less than the lifetime, . is one.
TEST(DevService, KeepsTheRulesOfSigningIn) {
  const std::map<char, HTTPRequest> calls = {
      {'p', askPicture(number)},
      {'t', askCode(number, "aaaa")},   // the first picture's text
      {'u', askCode(number, "99999")},  // that of those after it
      {'x', askCode(number, "aaa")},
      {'c', login("000000")},  // sent for the first picture
      {'d', login("999999")},  // sent for those after it
      {'w', login("00000")},
      {'s', post("/tenant/submitMobileInformation",
                 R"({"mobile":"+4915112345678","deviceModel":"M","carrier":"C","deviceName":"Döröthé",)"
                 R"("IMEI":"","IMSI":"26201"})")}};
  const std::map<int, char> outcomes = {{0, '+'},    {2001, 'P'}, {2002, 'T'},
                                        {3001, 'C'}, {3002, 'W'}, {4001, 'S'}};
  const std::string_view scripts[] = {
      "tPcCsS",           "p+t+tPsSc+cCs+p+u+wWs+", "p+xTtP",  "p+p+tT",   "p+>t+",
      "p+>.tP",           "p+t+p+u+cWd+",           "p+t+>c+", "p+t+>.cC", "p+t+wWwWwWwWc+",
      "p+t+wWwWwWwWwWcC", "p+t+wWwWwWwWp+u+wWd+"};
  for (const std::string_view script : scripts) {
    Bench bench;
    std::string played;
    char outcome = 0;
    for (const char step : script) {
      if (step == 'p') bench.bits = outcome == 0 ? 0 : ~0u;
      if (step == '>') bench.now += secretLifetime - 1ms;
      if (step == '.') bench.now += 1ms;
      if (calls.contains(step)) outcome = outcomes.at(bench.call(calls.at(step))["code"]);
      played += step == '+' || (step >= 'A' && step <= 'Z') ? outcome : step;
    }
    EXPECT_EQ(played, script);
  }
}

TEST(DevService, StaysSmallAndForgetsTheNumberUsedLongestAgo) {
  Bench bench;
  for (std::size_t i = 0; i < 3 * maxNumbers; ++i) {
    bench.service.answer(askCode(std::to_string(10'000 + i), ""));
    if (i % (maxNumbers - 1) == 5) bench.service.answer(askCode("10005", ""));
  }
  for (std::size_t i = 0; i <= maxMessages; ++i) {
    bench.service.answer(askPicture(number));
    bench.service.answer(askCode(number, "AAAA"));
  }
  const std::string large(9000, '/');
  const std::string body =
      Json{{"mobile", large}, {"captcha", "s3cret"}, {"carrier", large}, {"x", 1}}.dump();
  for (std::size_t i = 0; i <= maxLogEntries; ++i)
    bench.router.log({large, large, {}, body, ""}, {.body = large});
  const Json state = Json::parse(bench.router.answer(local("/page/state")).body);
  EXPECT_EQ(bench.service.recent(3 * maxNumbers).size(), maxNumbers);
  EXPECT_TRUE(bench.service.inspect("10005"));
  EXPECT_FALSE(bench.service.inspect("10006"));
  EXPECT_EQ(state["messages"].size(), maxMessages);
  EXPECT_EQ(state["messages"].back()["id"], maxMessages + 1);
  EXPECT_EQ(state["requests"].size(), maxLogEntries);
  for (const auto part : {"method", "path", "mobile"}) {
    EXPECT_EQ(state["requests"][0][part].get<std::string>().size(), maxLogText);
  }
  const Json members = {{"mobile", "***"}, {"captcha", "***"}, {"carrier", large.substr(0, maxLogText)}};
  EXPECT_EQ(Json::parse(state["requests"][0]["members"].get<std::string>()), members);
  EXPECT_EQ(state["numbers"].size(), maxShownNumbers);
  EXPECT_EQ(state["numberCount"], maxNumbers);
  HTTPRequest filtered = local("/page/state");
  filtered.query = "filter=%2B4915";
  EXPECT_EQ(Json::parse(bench.router.answer(filtered).body)["numbers"].size(), 1);
}

TEST(DevService, LetsNobodyTryCodeAfterCode) {
  Bench bench;
  bench.bits = ~0u;
  const auto askAnother = [&] {
    bench.call(askPicture(number));
    bench.call(askCode(number, "99999"));
  };
  const auto outcomeOf = [&](const std::string& code) { return bench.call(login(code))["code"]; };
  for (int tries = 0; tries < maxWrongCodes; ++tries) {
    if (tries == 1) bench.now += 30min;  // the hour starts with the first
    if (tries % codeAttempts == 0 || tries == 1) askAnother();
    EXPECT_EQ(outcomeOf("0"), 3002) << tries;
  }
  bench.now += 30min - 1ms;
  askAnother();
  EXPECT_EQ(outcomeOf("999999"), 3003);
  bench.now += 1ms;
  EXPECT_EQ(outcomeOf("999999"), 0);
}

TEST(DevService, SpoilsRepliesOnDemand) {
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
      {"020001", [](auto& reply, auto) { return reply.fault == TransportFault::none; }},
      {"19", [](auto&, auto json) { return json["code"] == 0; }},
  };
  for (const auto& [fault, holds] : cases) {
    Bench bench;
    const std::string mobile = "+999000001" + fault;
    const HTTPReply reply = bench.service.answer(askPicture(mobile));
    EXPECT_TRUE(holds(reply, Json::parse(reply.body, nullptr, false))) << fault;
    // Only a refusal keeps the call from being done, and the other calls are as usual.
    EXPECT_EQ(bench.call(askCode(mobile, "AAAA"))["code"], fault == "08" ? 2001 : 0) << fault;
  }
}

// A letter is a call: R is refused as chosen, and . is answered.
TEST(Page, SpoilsCallsAsChosen) {
  const std::pair<std::string, std::string> choices[] = {{R"({"fault":8})", "R..."},
                                                         {R"({"fault":8,"every":1})", "RRRR"},
                                                         {R"({"fault":8,"every":3})", "..R..R"},
                                                         {R"({"fault":null})", "."},
                                                         {R"({"fault":1,"delay":60001})", ""},
                                                         {R"({"fault":8,"every":-1})", ""},
                                                         {R"({"fault":8,"never":1})", ""},
                                                         {R"({"fault":0})", ""},
                                                         {R"({"fault":"8"})", ""},
                                                         {R"({"fault":8.5})", ""},
                                                         {R"({"delay":8})", ""},
                                                         {"[8]", ""},
                                                         {"", ""}};
  for (const auto& [body, outcomes] : choices) {
    Bench bench;
    const HTTPReply reply = bench.router.answer(local("/page/fault", body));
    EXPECT_EQ(reply.status, outcomes.empty() ? 400 : 200) << body;
    EXPECT_TRUE(Json::parse(reply.body)["msg"].is_string());
    // Neither what is no call nor a number that demands another fault counts.
    EXPECT_EQ(bench.call(askCode("12", ""))["code"], 1004);
    EXPECT_EQ(bench.call(askCode("+99900000212", ""))["code"], "2001");
    for (const char outcome : outcomes.empty() ? "." : outcomes)
      EXPECT_EQ(bench.call(askCode(number, ""))["code"], outcome == 'R' ? 4321 : 2001) << body;
  }
  Bench bench;
  bench.router.answer(local("/page/fault", R"({"fault":1,"delay":250})"));
  EXPECT_EQ(bench.service.answer(askCode(number, "")).delay, 250ms);
}

TEST(Page, AnswersTheDeveloperAlone) {
  const std::string own = "127.0.0.1:8080", ownOrigin = "http://127.0.0.1:8080", peer = "127.0.0.1";
  struct Case {
    std::string peer, host;
    std::optional<std::string> origin;
    bool isLocal;
    std::string site = "none";
  };
  const Case cases[] = {
      {peer, own, std::nullopt, true},
      {peer, own, std::nullopt, true, "same-origin"},
      {peer, own, std::nullopt, false, "cross-site"},
      {peer, own, std::nullopt, false, "same-site"},
      {peer, own, ownOrigin, true},
      {"::1", "[::1]", "http://[::1]", true},
      {peer, "LocalHost:80", "http://localhost:80", true},
      {"192.0.2.1", own, ownOrigin, false},
      {peer, "", std::nullopt, false},
      {peer, "rebound.example:8080", std::nullopt, false},
      {peer, "rebound.example:8080", "http://rebound.example:8080", false},
      {peer, "localhost.example", "http://localhost.example", false},
      {peer, "127.0.0.1:8080:80", "http://127.0.0.1:8080:80", false},
      {peer, own, "http://other.example", false},
      {peer, own, "http://127.0.0.1:3000", false},
      {peer, own, "https://127.0.0.1:8080", false},
      {peer, own, "null", false},
      {peer, own, "", false},
  };
  for (const Case& each : cases) {
    Bench bench;
    bench.call(askPicture(number));
    const auto statusOf = [&](HTTPRequest request) {
      request.peer = each.peer;
      request.headers = {{"host", each.host}, {"Sec-Fetch-Site", each.site}};
      if (each.origin) request.headers.emplace_back("origin", *each.origin);
      return bench.router.answer(request).status;
    };
    const int expected = each.isLocal ? 200 : 403;
    const std::string picture = "/page/picture/" + number;
    for (const std::string path : {"/", "/page/state", picture.c_str(), "/page/style.css", "/inspect"})
      EXPECT_EQ(statusOf(local(path)), expected)
          << path << " " << each.host << " " << each.origin.value_or("-");
    EXPECT_EQ(statusOf(local("/page/fault", R"({"fault":1})")), expected) << each.host;
    EXPECT_EQ(bench.service.chosenFault().demand.fault != nullptr, each.isLocal);
    HTTPRequest forget = local("/inspect");
    forget.method = "DELETE";
    EXPECT_EQ(statusOf(forget), expected);
    EXPECT_EQ(bench.service.size(), each.isLocal ? 0 : 1);
  }
  Bench bench;
  HTTPRequest link = local("/");
  link.headers = {{"Host", own}, {"Sec-Fetch-Site", "cross-site"}, {"Sec-Fetch-Mode", "navigate"}};
  EXPECT_EQ(bench.router.answer(link).status, 200);
  EXPECT_EQ(bench.router.answer(local("/page/picture/" + number)).status, 404);
  EXPECT_EQ(bench.router.answer(local("/page/../inspect")).status, 404);
  EXPECT_EQ(bench.router.answer(local("/page/state", "{}")).status, 405);
}

TEST(Router, InspectsOneNumberOrAll) {
  Bench bench;
  bench.call(askPicture(number));
  bench.call(askCode(number, "AAAA"));
  bench.call(askPicture("12345"));
  const std::string one = "mobile=%2B4915112345678";
  const std::tuple<std::string, int, int> cases[] = {
      {"", 200, 0},
      {one, 200, 0},
      {"mobile=+4915112345678", 200, 0},
      {"mobile=1", 404, 0},
      {one + "&after=0", 200, 0},
      {one + "&after=1", 204, 0},
      {one + "&after=1&wait=60000", 204, 60000},
      {one + "&wait=60000", 200, 0},
      {"mobile=12345&wait=1", 204, 1},
      {one + "&wait=60001", 400, 0},
      {one + "&wait=", 400, 0},
      {one + "&after=-1", 400, 0},
      {one + "&until=1", 400, 0},
      {"wait=1", 400, 0},
      {"&&", 200, 0},
  };
  for (const auto& [query, status, wait] : cases) {
    HTTPRequest request = local("/inspect");
    request.query = query;
    const HTTPReply reply = bench.router.answer(request);
    EXPECT_EQ(reply.status, status) << query;
    EXPECT_EQ(reply.wait.count(), wait) << query;
    if (status != 200) continue;
    const Json json = Json::parse(reply.body);
    const Json& entry = json.contains(number) ? json[number] : json;
    EXPECT_EQ(entry["code"], "000000");
    EXPECT_EQ(entry["messageId"], 1);
    EXPECT_GE(entry["times"]["message"], entry["times"]["picture"]);
    EXPECT_TRUE(entry["times"]["login"].is_null());
  }
}

TEST(Router, IsAProxyForItsOwnHostsAlone) {
  const std::tuple<std::string, std::string, int> cases[] = {
      {"GET", "http://identity.test/", 403},  // a page that is not this machine's
      {"GET", "http://identity.test/inspect", 403},
      {"GET", "HTTP://Identity.Test:80/tenant/verify/captcha?a", 405},
      {"GET", "http://localhost/inspect", 200},
      {"GET", "http://127.0.0.1:8080/inspect?mobile=1", 404},
      {"GET", "http://127.0.0.1:8080", 200},
      {"HEAD", "http://127.0.0.1:8080?a", 200},
      {"GET", "http://127.0.0.1:8081/inspect", 403},
      {"GET", "http://user@localhost/inspect", 403},
      {"GET", "http:///inspect", 403},
      {"GET", "https://localhost/inspect", 403},
      {"GET", "http://other.test/inspect", 403},
      {"CONNECT", "identity.test:80", 403},
      {"CONNECT", "identity.test:443", 403},
  };
  for (const auto& [method, text, status] : cases) {
    Bench bench;
    const Target target = parseTarget(text);
    HTTPRequest request{method, target.path, {}, "", "127.0.0.1", target.query, target.authority.has_value()};
    if (target.authority) request.headers.emplace_back("Host", *target.authority);
    EXPECT_EQ(bench.router.answer(request).status, status) << text;
  }
}

TEST(Picture, TellsTheCharactersApart) {
  std::set<std::string> pictures;
  for (const char character : alphabet) {
    EXPECT_FALSE(glyphStrokes(character).empty()) << character;
    const std::vector<std::uint8_t> picture = drawPicture(std::string(4, character), 3);
    EXPECT_TRUE(pictures.emplace(picture.begin(), picture.end()).second) << character;
  }
}

/// A call that is refused with 2001 unless the number demands a fault.
std::string callFor(const std::string& mobile, const std::string& field = "") {
  const HTTPRequest request = askCode(mobile, "");
  return "POST " + request.path + " HTTP/1.1\r\nContent-Type: application/json\r\nXRAPI-VERSION: 1.0\r\n" +
         "XRAPI-DEVICE-TYPE: 1\r\n" + field + "Content-Length: " + std::to_string(request.body.size()) +
         "\r\n\r\n" + request.body;
}

/// The object in a reply, once it is whole.
Json bodyOf(const std::string& reply) {
  return Json::parse(std::ranges::find(reply, '{'), reply.end(), nullptr, false);
}

/// A connection to a server on this machine.
class Client {
 public:
  explicit Client(const Server& server) {
    const sockaddr_in address{AF_INET, htons(server.port()), {htonl(INADDR_LOOPBACK)}, {}};
    EXPECT_EQ(connect(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  }
  Client(Client&&) = delete;
  ~Client() { close(descriptor_); }

  Client& send(std::string_view text) {
    EXPECT_EQ(::send(descriptor_, text.data(), text.size(), MSG_NOSIGNAL), ssize_t(text.size()));
    return *this;
  }

  /// Sends byte by byte, no faster than one in a millisecond, until the server replies or ends the connection; how many
  /// went.
  std::size_t drip(std::string_view text) {
    std::size_t count = 0;
    pollfd heard{descriptor_, POLLIN, 0};
    while (count < text.size() && poll(&heard, 1, 1) == 0 &&
           ::send(descriptor_, &text[count], 1, MSG_NOSIGNAL) == 1)
      ++count;
    return count;
  }

  /// A reply, or what came of it before the connection ended, or the error it ended with.
  std::string receive() {
    std::string reply;
    char buffer[4096];
    ssize_t count = 0;
    while (!bodyOf(reply).is_object() && (count = recv(descriptor_, buffer, sizeof buffer, 0)) > 0) {
      reply.append(buffer, std::size_t(count));
    }
    return count < 0 ? std::strerror(errno) : reply;
  }

  /// Whether the server has closed the connection already.
  bool hasEnded() const {
    char byte = 0;
    return recv(descriptor_, &byte, 1, MSG_PEEK | MSG_DONTWAIT) == 0;
  }

 private:
  const int descriptor_ = socket(AF_INET, SOCK_STREAM, 0);
};

TEST(DevServer, KeepsItsPortItsConnectionsAndFieldsAsTheyCame) {
  const std::pair<std::string, Json> cases[] = {
      {"XRAPI-CLIENT-ID:\t%41:+ \xff b \r\n", "%41:+ \ufffd b"},  // JSON has to be UTF-8
      {"XRAPI-CLIENT-ID:\r\n", ""},
      {"", nullptr},
      {"xrapi-client-id: \t \r\nX: y\r\n", ""},
  };
  IdentityService service;
  const Server server(service);
  EXPECT_ANY_THROW(Server(service, server.port()));
  Client connection(server);
  for (const auto& [field, clientId] : cases) {
    EXPECT_EQ(bodyOf(connection.send(callFor(number, field)).receive())["code"], 2001);
    const Json known = bodyOf(connection.send("GET /inspect HTTP/1.1\r\nHost: localhost\r\n\r\n").receive());
    EXPECT_EQ(known[number]["clientId"], clientId) << field;
  }
}

TEST(DevServer, RefusesOrSpoils) {
  const std::tuple<std::string, std::string, Json> cases[] = {
      {"GET / HTTP/1.1\r\n" + std::string(65'519, '\n') + "\r\n", "HTTP/1.1 400", 1009},
      {"POST / HTTP/1.1\r\nContent-Length: 99999\r\n\r\n" + std::string(99999, ' '), "HTTP/1.1 413", 1005},
      {"\x16\x03\x01\r\n\r\n", "HTTP/1.1 400", 1009},
      {"POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\nx\r\n", "HTTP/1.1 400", 1009},
      {"GET / HTTP/7\r\n\r\n", "HTTP/1.1 400", 1009},
      {"GET /" + std::string(70'000, 'a') + " HTTP/1.1\r\n\r\n", "HTTP/1.1 431", 1005},
      {"GET /%00%2g%2 HTTP/1.1\r\n\r\n", "HTTP/1.1 404", 1006},
      {"GET /page/state HTTP/1.1\r\n\r\n", "HTTP/1.1 403", 1008},
      {"GET http://other.test/inspect HTTP/1.1\r\nHost: localhost\r\n\r\n", "HTTP/1.1 403", 1010},
      {"GET http://localhost/inspect HTTP/1.1\r\nHost: other.test\r\n\r\n", "HTTP/1.1 200", Json::object()},
      {callFor("+99900000003"), std::strerror(ECONNRESET), nullptr},
      {callFor("+99900000204"), "HTTP/1.1 200", nullptr},
  };
  IdentityService service;
  const Server server(service);
  for (const auto& [text, start, code] : cases) {
    const std::string reply = Client(server).send(text).receive();
    EXPECT_TRUE(reply.starts_with(start)) << reply << " to " << text.substr(0, 300);
    EXPECT_EQ(reply.starts_with("HTTP"), reply.find("\r\n\r\n{") != reply.npos);
    const Json body = bodyOf(reply);
    EXPECT_EQ(body.is_object() ? body.value("code", body) : Json(), code) << text.substr(0, 300);
  }
}

TEST(DevServer, LogsRepliesBeforeTheyArePacked) {
  IdentityService service;
  std::string logged;
  const Server server(service, 0, [&](auto line) { logged = line; });
  Client(server).send(callFor(number, "Accept-Encoding: gzip\r\nConnection: close\r\n")).receive();
  EXPECT_TRUE(logged.starts_with(R"(POST /tenant/getVerifyCode 200 {"code":2001,"msg":")")) << logged;
}

TEST(DevServer, EndsRequestsThatTakeTooLong) {
  IdentityService service;
  const Server server(service, 0, {}, {.request = 1ms});
  std::string request = "GET / HTTP/1.1\r\n";
  while (request.size() < maxHeadSize - 100) request += "X: y\r\n";
  EXPECT_LT(Client(server).drip(request), request.size());
}

TEST(DevServer, ServesSoManyAtOnceAndEndsAnIdleOneForAnother) {
  IdentityService service;
  const Server server(service, 0, {}, {.connections = 2, .idle = 10min});
  Client first(server), second(server), third(server);
  for (Client* client : {&first, &second, &third}) {
    EXPECT_FALSE(first.hasEnded() || second.hasEnded());
    EXPECT_EQ(bodyOf(client->send(callFor(number)).receive())["code"], 2001);
  }
  EXPECT_TRUE(first.hasEnded() || second.hasEnded());
}

TEST(DevServer, TellsOfAMessageAsSoonAsItCame) {
  IdentityService service{{.random = [] { return 0U; }}};
  const Server server(service);
  Client script(server), phone(server);
  script.send("GET /inspect?mobile=" + number + "&wait=60000 HTTP/1.1\r\nHost: localhost\r\n\r\n");
  service.answer(askPicture(number));
  phone.send(callFor(number));  // uses up the picture
  EXPECT_EQ(bodyOf(phone.receive())["code"], 2002);
  service.answer(askPicture(number));
  service.answer(askCode(number, "AAAA"));
  phone.send(callFor("12345")).receive();
  EXPECT_EQ(bodyOf(script.receive())["code"], "000000");
}

TEST(DevServer, StopsAtOnce) {
  IdentityService service;
  std::optional<Server> server(std::in_place, service, std::uint16_t{0}, Server::Log(),
                               ServerLimits{.connections = 5, .idle = 10min, .request = 10min});
  Client fresh(*server), idle(*server), delayed(*server), silent(*server), script(*server), waiting(*server);
  idle.send(callFor(number)).receive();
  script.send("GET /inspect?mobile=1&wait=60000 HTTP/1.1\r\nHost: localhost\r\n\r\n");
  delayed.send(callFor("+99900000001"));
  silent.send(callFor("+99900000018"));
  // Until they are being served.
  while (!service.inspect("+99900000001") || !service.inspect("+99900000018")) std::this_thread::yield();
  server.reset();
  for (Client* connection : {&fresh, &idle, &delayed, &silent, &script}) EXPECT_EQ(connection->receive(), "");
}

}  // namespace
}  // namespace devservice
