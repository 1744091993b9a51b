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

#include "tools/devservice/Glyphs.h"
#include "tools/devservice/IdentityService.h"
#include "tools/devservice/Page.h"
#include "tools/devservice/Picture.h"
#include "tools/devservice/Server.h"

namespace devservice {
namespace {

using Json = nlohmann::json;
using namespace std::chrono;

const std::string number = "+4915112345678";

Request post(std::string path, std::string body) {
  const decltype(Request::headers) headers = {{"content-type", "application/json; charset=utf-8"},
                                              {"XRAPI-Version", "1.0"},
                                              {"XRAPI-DEVICE-TYPE", "1"}};
  return {"POST", std::move(path), headers, std::move(body), "127.0.0.1"};
}

Request askPicture(const std::string& mobile) {
  return post("/tenant/verify/captcha", Json{{"mobile", mobile}}.dump());
}

Request askCode(const std::string& mobile, const std::string& text) {
  return post("/tenant/getVerifyCode", Json{{"mobile", mobile}, {"captcha", text}}.dump());
}

Request login(const std::string& code) {
  return post("/tenant/submitVerifyCode", Json{{"mobile", number}, {"verificationCode", code}}.dump());
}

/// From the page of a service on this machine; with a body, to change something.
Request local(std::string path, std::optional<std::string> body = std::nullopt) {
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

  Json call(const Request& request) { return Json::parse(service.answer(request).body); }
};

TEST(DevService, RefusesMalformedRequests) {
  const Request good = askPicture("12345");
  const auto with = [&](const std::string& body) { return post(good.path, body); };
  const std::string filler(maxBodySize - good.body.size(), ' ');
  std::vector<std::tuple<Request, int, int>> cases = {
      {{"POST", good.path + "/", {}, "", ""}, 404, 1006},
      {{"GET", good.path, {}, "", ""}, 405, 1007},
      {{"GET", "/inspect", {}, "", "192.0.2.1"}, 403, 1008},
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
    std::get<Request>(cases.emplace_back(good, 200, excess ? 1002 : 0))
        .headers.emplace_back("xrapi-client-id", text);
  }
  for (std::size_t i = 0; i < 3; ++i) {
    std::get<Request>(cases.emplace_back(good, 200, 1002)).headers[i].first += "x";
    std::get<Request>(cases.emplace_back(good, 200, 1002)).headers[i].second.front() = '?';
  }
  for (const auto& [request, status, code] : cases) {
    const Reply reply = Bench().service.answer(request);
    Json object = Json::parse(reply.body);
    EXPECT_EQ(reply.status, status) << request.path;
    EXPECT_EQ(object["code"], code) << request.body.substr(0, 40) << testing::PrintToString(request.headers);
    EXPECT_EQ(object["data"].is_array(), code == 0);
  }
}

// A call, a small letter, is followed by its outcome; > is a millisecond less than the lifetime, . is one.
TEST(DevService, KeepsTheRulesOfSigningIn) {
  const std::map<char, Request> calls = {
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
  Page page(bench.service);
  for (std::size_t i = 0; i < 3 * maxNumbers; ++i) {
    bench.service.answer(askCode(std::to_string(10'000 + i), ""));
    if (i % (maxNumbers - 1) == 5) bench.service.answer(askCode("10005", ""));
  }
  for (std::size_t i = 0; i <= maxMessages; ++i) {
    bench.service.answer(askPicture(number));
    bench.service.answer(askCode(number, "AAAA"));
  }
  for (std::size_t i = 0; i <= maxLogEntries; ++i)
    page.record({std::string(9000, 'x'), std::string(9000, '/'), 404, ""});
  const Json state = Json::parse(page.answer(local("/page/state")).body);
  EXPECT_EQ(bench.service.recent(3 * maxNumbers).size(), maxNumbers);
  EXPECT_TRUE(bench.service.inspect("10005"));
  EXPECT_FALSE(bench.service.inspect("10006"));
  EXPECT_EQ(state["messages"].size(), maxMessages);
  EXPECT_EQ(state["messages"].back()["id"], maxMessages + 1);
  EXPECT_EQ(state["requests"].size(), maxLogEntries);
  for (const auto part : {"method", "path"}) {
    EXPECT_EQ(state["requests"][0][part].get<std::string>().size(), maxLogText);
  }
  EXPECT_EQ(state["numbers"].size(), maxShownNumbers);
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
  const std::pair<std::string, bool (*)(const Reply&, Json)> cases[] = {
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
      {"18", [](auto&, auto json) { return json["code"] == 0; }},
  };
  for (const auto& [fault, holds] : cases) {
    Bench bench;
    const std::string mobile = "+999000001" + fault;
    const Reply reply = bench.service.answer(askPicture(mobile));
    EXPECT_TRUE(holds(reply, Json::parse(reply.body, nullptr, false))) << fault;
    // Only a refusal keeps the call from being done, and the other calls are as usual.
    EXPECT_EQ(bench.call(askCode(mobile, "AAAA"))["code"], fault == "08" ? 2001 : 0) << fault;
  }
}

TEST(Page, SpoilsTheNextCallAsChosen) {
  const std::pair<std::string, int> choices[] = {{R"({"fault":8})", 4321},
                                                 {R"({"fault":null})", 0},
                                                 {R"({"fault":0})", -1},
                                                 {R"({"fault":"8"})", -1},
                                                 {R"({"fault":8.5})", -1},
                                                 {R"({"fault":[8]})", -1},
                                                 {"{}", -1},
                                                 {"[8]", -1},
                                                 {"", -1}};
  for (const auto& [body, expected] : choices) {
    Bench bench;
    Page page(bench.service);
    const Reply reply = page.answer(local("/page/fault", body));
    EXPECT_EQ(reply.status, expected < 0 ? 400 : 200) << body;
    EXPECT_TRUE(Json::parse(reply.body)["msg"].is_string());
    // Neither what is no call nor a number that demands another fault uses it up.
    EXPECT_EQ(bench.call(askCode("12", ""))["code"], 1004);
    EXPECT_EQ(bench.call(askCode("+99900000212", ""))["code"], "2001");
    EXPECT_EQ(bench.call(askCode(number, ""))["code"], expected > 0 ? expected : 2001) << body;
    EXPECT_EQ(bench.call(askCode(number, ""))["code"], 2001);
  }
}

TEST(Page, AnswersTheDeveloperAlone) {
  const std::string own = "127.0.0.1:8080", ownOrigin = "http://127.0.0.1:8080", peer = "127.0.0.1";
  struct Case {
    std::string peer, host;
    std::optional<std::string> origin;
    bool looks, changes;
  };
  const Case cases[] = {
      {peer, own, std::nullopt, true, false},
      {peer, own, ownOrigin, true, true},
      {"::1", "[::1]", "http://[::1]", true, true},
      {peer, "LocalHost:80", "http://localhost:80", true, true},
      {"192.0.2.1", own, ownOrigin, false, false},
      {peer, "", std::nullopt, false, false},
      {peer, "rebound.example:8080", std::nullopt, false, false},
      {peer, "rebound.example:8080", "http://rebound.example:8080", false, false},
      {peer, "localhost.example", "http://localhost.example", false, false},
      {peer, "127.0.0.1:8080:80", "http://127.0.0.1:8080:80", false, false},
      {peer, own, "http://other.example", false, false},
      {peer, own, "http://127.0.0.1:3000", false, false},
      {peer, own, "https://127.0.0.1:8080", false, false},
      {peer, own, "null", false, false},
      {peer, own, "", false, false},
  };
  for (const Case& each : cases) {
    Bench bench;
    Page page(bench.service);
    bench.call(askPicture(number));
    const auto statusOf = [&](Request request) {
      request.peer = each.peer;
      request.headers = {{"host", each.host}};
      if (each.origin) request.headers.emplace_back("origin", *each.origin);
      return (Page::owns(request.path) ? page.answer(request) : bench.service.answer(request)).status;
    };
    const std::string picture = "/page/picture/" + number;
    for (const std::string path : {"/", "/page/state", picture.c_str(), "/page/style.css", "/inspect"}) {
      EXPECT_EQ(statusOf(local(path)), each.looks ? 200 : 403)
          << path << " " << each.host << " " << each.origin.value_or("-");
    }
    EXPECT_EQ(statusOf(local("/page/fault", R"({"fault":1})")), each.changes ? 200 : 403) << each.host;
    EXPECT_EQ(bench.service.chosenFault() != nullptr, each.changes);
  }
  IdentityService service;
  Page page(service);
  EXPECT_EQ(page.answer(local("/page/picture/" + number)).status, 404);
  EXPECT_EQ(page.answer(local("/page/../inspect")).status, 404);
  EXPECT_EQ(page.answer(local("/page/state", "{}")).status, 405);
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
  const Request request = askCode(mobile, "");
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
    const Json expected = {{"picture", nullptr}, {"message", nullptr},   {"code", nullptr},
                           {"facts", nullptr},   {"clientId", clientId}, {"signedIn", false}};
    EXPECT_EQ(known, (Json{{number, expected}})) << field;
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
      {callFor("+99900000003"), std::strerror(ECONNRESET), nullptr},
      {callFor("+99900000204"), "HTTP/1.1 200", nullptr},
  };
  IdentityService service;
  const Server server(service);
  for (const auto& [text, start, code] : cases) {
    const std::string reply = Client(server).send(text).receive();
    EXPECT_TRUE(reply.starts_with(start)) << reply << " to " << text.substr(0, 300);
    EXPECT_EQ(reply.starts_with("HTTP"), reply.find("\r\n\r\n{") != reply.npos);
    EXPECT_EQ(bodyOf(reply).is_object() ? bodyOf(reply)["code"] : Json(), code);
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

TEST(DevServer, StopsAtOnce) {
  IdentityService service;
  std::optional<Server> server(std::in_place, service, std::uint16_t{0}, Server::Log(),
                               ServerLimits{.connections = 3, .idle = 10min, .request = 10min});
  Client fresh(*server), idle(*server), delayed(*server), waiting(*server);
  idle.send(callFor(number)).receive();
  delayed.send(callFor("+99900000001"));
  while (!service.inspect("+99900000001")) std::this_thread::yield();  // until it is being served
  server.reset();
  for (Client* connection : {&fresh, &idle, &delayed}) EXPECT_EQ(connection->receive(), "");
}

}  // namespace
}  // namespace devservice
