#include <tuple>

#include "tests/tools/ServiceBench.h"
#include "tools/devservice/isLocalCaller.h"
#include "tools/support/Target.h"

namespace devservice {
namespace {

using Json = nlohmann::json;
using namespace std::chrono;
using namespace std::string_literals;

TEST(Page, ChoosesAFault) {
  const std::tuple<std::string, int, std::vector<int>> cases[] = {
      // The codes of the next calls come last.
      {R"({"fault":8})", 200, {4321, 2001, 2001}},
      {R"({"fault":8,"every":1})", 200, {4321, 4321, 4321}},
      {R"({"fault":8,"every":3})", 200, {2001, 2001, 4321, 2001, 2001, 4321}},
      {R"({"fault":null})", 200, {2001}},
      {R"({"fault":1,"delay":60001})", 400, {2001}},
      {R"({"fault":8,"every":1001})", 400, {2001}},
      {R"({"fault":8,"never":1})", 400, {2001}},
      {R"({"fault":0})", 400, {2001}},
      {"[8]", 400, {2001}},
  };
  for (const auto& [body, status, codes] : cases) {
    ServiceBench bench;
    EXPECT_EQ(bench.router.answer(local("/page/fault", "", "POST", body)).status, status) << body;
    // Neither a malformed call nor a number that demands another fault uses up the choice.
    EXPECT_EQ(bench.codeOf(askCode("12", "")), 1004);
    EXPECT_EQ(bench.codeOf(askCode("+99900000212", "")), "2001");
    for (const int code : codes) EXPECT_EQ(bench.codeOf(askCode(number, "")), code) << body;
  }
  ServiceBench bench;
  bench.router.answer(local("/page/fault", "", "POST", R"({"fault":1,"delay":250})"));
  EXPECT_EQ(bench.service.answer(askCode(number, "")).delay, 250ms);
}

TEST(IsLocalCaller, KnowsTheDeveloperFromOtherSites) {
  using Fields = decltype(HTTPRequest::headers);
  const std::string peer = "127.0.0.1", own = "127.0.0.1:8080", site = "Sec-Fetch-Site";
  const std::string dest = "Sec-Fetch-Dest";
  const std::pair navigates("Sec-Fetch-Mode"s, "navigate"s);
  const std::tuple<std::string, std::string, Fields, bool> cases[] = {
      {"a script", peer, {{"host", own}}, true},
      {"the page", peer, {{"host", own}, {"Origin", "http://" + own}}, true},
      {"the page over IPv6", "::1", {{"host", "[::1]"}, {"Origin", "http://[::1]"}}, true},
      {"the page by name", peer, {{"host", "LocalHost:80"}, {"Origin", "http://localhost:80"}}, true},
      {"a part of the page", peer, {{"host", own}, {site, "same-origin"}}, true},
      {"a link", peer, {{"host", own}, {site, "cross-site"}, navigates, {dest, "document"}}, true},
      {"a frame", peer, {{"host", own}, {site, "cross-site"}, navigates, {dest, "iframe"}}, false},
      {"a part of another site", peer, {{"host", own}, {site, "cross-site"}}, false},
      {"another port's site", peer, {{"host", own}, {site, "same-site"}}, false},
      {"another machine", "192.0.2.1", {{"host", own}, {"Origin", "http://" + own}}, false},
      {"no host", peer, {}, false},
      {"a name that starts alike", peer, {{"host", "localhost.example"}}, false},
      {"two ports", peer, {{"host", own + ":80"}}, false},
      {"another port", peer, {{"host", own}, {"Origin", "http://127.0.0.1:3000"}}, false},
      {"another scheme", peer, {{"host", own}, {"Origin", "https://" + own}}, false},
  };
  for (const auto& [label, from, headers, isLocal] : cases)
    EXPECT_EQ(isLocalCaller({"GET", "/", headers, "", from}), isLocal) << label;
  const Fields link = {{"host", own}, {site, "cross-site"}, navigates, {dest, "document"}};
  EXPECT_FALSE(isLocalCaller({"GET", "/inspect", link, "", peer}));
  EXPECT_FALSE(isLocalCaller({"POST", "/", link, "", peer}));
}

TEST(Router, KeepsAllButTheCallsForLocalCallers) {
  const std::tuple<HTTPRequest, int, std::string> cases[] = {
      // The request, its status for a local caller, and the methods that a refusal names.
      {local("/"), 200, ""},
      {local("/page/state"), 200, ""},
      {local("/page/picture/" + number), 200, ""},
      {local("/page/picture/1"), 404, ""},
      {local("/page/../inspect"), 404, ""},
      {local("/openapi.json"), 200, ""},
      {local("/inspect"), 200, ""},
      {local("/page/state", "", "PUT"), 405, "GET, HEAD"},
      {local("/page/fault", "", "PUT"), 405, "POST"},
      {local("/inspect", "", "PUT"), 405, "GET, HEAD, DELETE"},
      {local("/inspect/requests", "", "DELETE"), 405, "GET, HEAD"},
      {local("/page/fault", "", "POST", R"({"fault":1})"), 200, ""},
      {local("/inspect", "", "DELETE"), 200, ""},
  };
  for (const bool isLocal : {true, false}) {
    ServiceBench bench;
    bench.service.answer(askPicture(number));
    for (auto [request, status, methods] : cases) {
      SCOPED_TRACE(request.method + " " + request.path);
      if (!isLocal) request.headers.front().second = "identity.test";
      const HTTPReply reply = bench.router.answer(request);
      EXPECT_EQ(reply.status, isLocal ? status : 403);
      if (reply.status == 405) {
        EXPECT_EQ(reply.headers.back(), std::pair("Allow"s, methods));
      }
    }
    EXPECT_EQ(bench.service.size(), isLocal ? 0 : 1);
    EXPECT_FALSE(bench.service.chosenFault().requested.fault);
  }
  const auto guards = ServiceBench().router.answer(local("/")).headers;
  ASSERT_GE(guards.size(), 2U);
  EXPECT_TRUE(guards[0].second.starts_with("default-src 'none'; script-src 'self'; ")) << guards[0].second;
  EXPECT_EQ(guards[1], std::pair("Cache-Control"s, "no-store"s));
}

TEST(Router, OpensToOtherMachinesThatKnowTheToken) {
  using Fields = decltype(HTTPRequest::headers);
  const std::string token = "sesame-0123", own = "http://10.0.0.1:8080", peer = "10.0.0.2";
  const std::pair bearer("Authorization"s, "Bearer " + token), origin("Origin"s, own);
  const std::pair cookie("Cookie"s, "a=b; orvane-token=" + token + "; c=d");
  const HTTPRequest asked{"GET", "/inspect", {}, "", peer}, page{"GET", "/", {}, "", peer};
  const HTTPRequest sent{"POST", "/page/token", {}, "token=" + token, peer};
  const HTTPRequest mistyped{"POST", "/page/token", {}, "token=sesame-0124", peer};
  const std::tuple<std::string, HTTPRequest, Fields, int, int> cases[] = {
      // The status comes last, after it the one of a service without a token.
      {"nothing", asked, {}, 401, 403},
      {"a script", asked, {bearer}, 200, 403},
      {"a page", asked, {cookie, origin}, 200, 403},
      {"a wrong token", asked, {{"Authorization", "Bearer " + token + "4"}}, 401, 403},
      {"a part of the token", asked, {{"Cookie", "orvane-token=sesame"}}, 401, 403},
      {"another cookie", asked, {{"Cookie", "x-orvane-token=" + token}}, 401, 403},
      {"another site", asked, {cookie, {"Origin", "http://10.0.0.1:3000"}}, 403, 403},
      {"a name that may be rebound", asked, {bearer, {"Host", "other.test"}}, 403, 403},
      {"the page", page, {}, 401, 403},
      {"the form", sent, {origin}, 303, 404},
      {"a wrong token in the form", mistyped, {origin}, 403, 404},
      {"another site's form", sent, {{"Origin", "http://other.test"}}, 403, 404},
      {"health", {"GET", "/health", {}, "", peer}, {{"Host", "other.test"}}, 200, 200},
  };
  for (auto [label, request, fields, status, closedStatus] : cases) {
    ServiceBench bench;
    Router open(bench.service, {"identity.test"}, {}, token);
    request.headers = fields;
    request.headers.emplace_back("Host", "10.0.0.1:8080");
    EXPECT_EQ(bench.router.answer(request).status, closedStatus) << label;
    const HTTPReply reply = open.answer(request);
    EXPECT_EQ(reply.status, status) << label;
    if (status != 303) continue;
    EXPECT_EQ(reply.headers.back(),
              std::pair("Set-Cookie"s, "orvane-token=" + token + "; Path=/; HttpOnly; SameSite=Strict"));
  }
}

TEST(Router, InspectsOneNumberOrAll) {
  ServiceBench bench;
  bench.service.answer(askPicture(number));
  bench.service.answer(askCode(number, "AAAA"));
  bench.service.answer(askPicture("12345"));
  const std::string one = "mobile=%2B4915112345678";
  const std::tuple<std::string, int, milliseconds> cases[] = {
      {"", 200, 0ms},
      {one, 200, 0ms},
      {"mobile=1", 404, 0ms},
      {one + "&after=0", 200, 0ms},
      {one + "&after=1", 204, 0ms},
      {one + "&after=1&wait=60000", 204, 60s},
      {one + "&wait=60000", 200, 0ms},
      {"mobile=12345&wait=1", 204, 1ms},
      {one + "&wait=60001", 400, 0ms},
      {one + "&wait=", 400, 0ms},
      {one + "&after=-1", 400, 0ms},
      {"wait=1", 400, 0ms},
      {"&&", 200, 0ms},
  };
  for (const auto& [query, status, wait] : cases) {
    const HTTPReply reply = bench.router.answer(local("/inspect", query));
    SCOPED_TRACE(query);
    EXPECT_EQ(reply.status, status);
    EXPECT_EQ(reply.wait, wait);
    if (status != 200) continue;
    const Json json = Json::parse(reply.body);
    const Json& entry = json.contains(number) ? json[number] : json;
    EXPECT_EQ(entry["code"], "000000");
    EXPECT_EQ(entry["messageId"], 1);
    EXPECT_GE(entry["times"]["message"], entry["times"]["picture"]);
    EXPECT_TRUE(entry["times"]["login"].is_null());
  }
}

TEST(Router, ServesItsOwnHostsAlone) {
  const std::string call = "/tenant/getVerifyCode";
  const std::tuple<std::string, std::string, int> cases[] = {
      // Directly, with a Host field. A call that is served needs another method, so its status is 405.
      {call, "identity.test", 405},
      {call, "Identity.Test:8080", 405},
      {call, "10.0.2.2:8080", 405},
      {call, "[fd00::1]:80", 405},
      {call, "devservice:8080", 405},
      {call, "other.test", 403},
      {call, "10.0.2.2.test", 403},
      {call, "[fd00::1].test", 403},
      {call, "", 403},
      // As a proxy.
      {"HTTP://Identity.Test:80/tenant/verify/captcha?a", "", 405},
      {"http://identity.test/inspect", "", 403},  // For local hosts.
      {"http://localhost/inspect", "", 200},
      {"http://127.0.0.1:8080/inspect?mobile=1", "", 404},
      {"http://127.0.0.1:8080", "", 200},
      {"http://127.0.0.1:8081/inspect", "", 403},
      {"http://user@localhost/inspect", "", 403},
      {"https://localhost/inspect", "", 403},
  };
  for (const auto& [text, host, status] : cases) {
    const support::Target target = support::parseTarget(text);
    HTTPRequest request = local(target.path, target.query);
    request.headers = {{"Host", target.authority.value_or(host)}};
    request.isProxied = target.authority.has_value();
    EXPECT_EQ(ServiceBench().router.answer(request).status, status) << text << " " << host;
  }
}

TEST(Router, TellsWhatItWasAskedWithoutSecrets) {
  ServiceBench bench;
  HTTPRequest identified = askCode(number, "AAAA");
  identified.headers.emplace_back("xrapi-client-id", "cl1ent");
  identified.headers.emplace_back("Host", "identity.test");
  for (const HTTPRequest& request :
       {askPicture(number), identified, askPicture("1 " + number), logIn("000000"), local("/inspect"),
        local("/inspect/requests"), local("/nothing", "", "POST", "{s3cret")}) {
    bench.router.log(request, bench.router.answer(request));
  }
  const auto tell = [&](const std::string& query) {
    return bench.router.answer(local("/inspect/requests", query));
  };
  const std::pair<std::string, std::vector<int>> cases[] = {
      {"", {1, 2, 3, 4, 5}},
      {"mobile=%2B49151", {1, 2, 3, 4}},
      {"mobile=1 ", {3}},
      {"call=picture&mobile=", {1, 3}},
      {"call=submission&unmasked=1", {}},
      {"since=1", {1, 2, 3, 4, 5}},
      {"since=9000000000000&format=", {}},
  };
  for (const auto& [query, expected] : cases) {
    std::vector<int> ids;
    for (const Json& entry : Json::parse(tell(query).body)) ids.push_back(entry["id"]);
    EXPECT_EQ(ids, expected) << query;
  }
  for (const std::string query : {"call=facts", "since=-1", "unmasked=2", "format=xml", "number=1"}) {
    EXPECT_EQ(tell(query).status, 400) << query;
  }
  for (const std::string format : {"", "har"}) {
    for (const std::string secret : {"4915112345678", "AAAA", "000000", "cl1ent", "s3cret"}) {
      EXPECT_EQ(tell("format=" + format).body.find(secret), secret.npos) << secret;
      EXPECT_NE(tell("unmasked=1&format=" + format).body.find(secret), secret.npos) << secret;
    }
  }
  const Json entry = Json::parse(tell("call=code&format=har").body)["log"]["entries"][0];
  EXPECT_EQ(entry["request"]["url"], "http://identity.test/tenant/getVerifyCode");
}

}  // namespace
}  // namespace devservice
