#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <netinet/in.h>
#include <nlohmann/json.hpp>
#include <optional>
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
  const std::string filler(IdentityService::maxBodySize - good.body.size(), ' ');
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
      if (step == '>') bench.now += IdentityService::lifetime - 1ms;
      if (step == '.') bench.now += 1ms;
      if (calls.contains(step)) outcome = outcomes.at(bench.call(calls.at(step))["code"]);
      played += step == '+' || (step >= 'A' && step <= 'Z') ? outcome : step;
    }
    EXPECT_EQ(played, script);
  }
}

TEST(DevService, ForgetsTheNumberUsedLongestAgo) {
  Bench bench;
  const auto touch = [&](std::size_t i) { bench.call(askCode(std::to_string(10'000 + i), "")); };
  for (std::size_t i = 0; i < IdentityService::maxNumbers; ++i) touch(i);
  touch(0);
  touch(IdentityService::maxNumbers);
  EXPECT_TRUE(bench.service.inspect("10000"));
  EXPECT_FALSE(bench.service.inspect("10001"));
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
    const Json known = bodyOf(connection.send("GET /inspect HTTP/1.1\r\n\r\n").receive());
    const Json expected = {{"picture", nullptr}, {"message", nullptr},   {"code", nullptr},
                           {"facts", nullptr},   {"clientId", clientId}, {"signedIn", false}};
    EXPECT_EQ(known, (Json{{number, expected}})) << field;
  }
}

TEST(DevServer, RefusesOrSpoils) {
  const std::tuple<std::string, std::string, Json> cases[] = {
      {"GET / HTTP/1.1\r\n" + std::string(65'519, '\n') + "\r\n", "HTTP/1.1 400", 1009},
      {"POST / HTTP/1.1\r\nContent-Length: 99999\r\n\r\n" + std::string(99999, ' '), "HTTP/1.1 413", 1005},
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

TEST(DevServer, StopsAtOnce) {
  IdentityService service;
  std::optional<Server> server(std::in_place, service);
  Client fresh(*server), idle(*server), delayed(*server);
  idle.send(callFor(number)).receive();
  delayed.send(callFor("+99900000001"));
  while (!service.inspect("+99900000001")) std::this_thread::yield();  // until it is being served
  const auto start = steady_clock::now();
  server.reset();
  EXPECT_LT(steady_clock::now() - start, 1s);
  for (Client* connection : {&fresh, &idle, &delayed}) EXPECT_EQ(connection->receive(), "");
}

}  // namespace
}  // namespace devservice
