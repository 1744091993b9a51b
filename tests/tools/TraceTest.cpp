#include <gtest/gtest.h>
#include <tuple>
#include <utility>

#include "tools/signin/Trace.h"

namespace signin {
namespace {

TEST(SignInTrace, MasksBodies) {
  support::Secrets secrets;
  for (const char* secret : {"", "7", "+447700900123", "k9XF", "4477009"}) secrets.add(secret);
  const std::string deep = std::string(200'000, '[') + "\"k9XF\"" + std::string(200'000, ']');
  const std::pair<std::string, std::string> cases[] = {
      {R"({"mobile":[{"a":1}],"verificationCode":12})", R"({"mobile":"***","verificationCode":"***"})"},
      {R"({"msg":"7, 447700900123, K9xf, 4477009","code":7})", R"({"msg":"7, ***, ***, ***","code":7})"},
      {R"({"a":[{"\u002b447700900123":[447700900123,"\u006b9XF"]}]})", R"({"a":[{"+***":["***","***"]}]})"},
      {R"({"data":[1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17]})", R"({"data":"<17 bytes>"})"},
      {"{\"msg\":\"\xff k9xf\"}", "{\"msg\":\"\xff ***\"}"},
      {deep, std::string(33, '[') + std::string(33, ']')},
  };
  for (const auto& [body, masked] : cases) EXPECT_EQ(secrets.maskedBody(body), masked);
}

TEST(SignInTrace, MasksANumberHoweverItIsWritten) {
  const std::tuple<std::string, std::string, std::string> cases[] = {
      {"+447700900123", "+447700900123, 07700900123, 07700 900-123, +44 (0)7700 900123, 900123",
       "+***, ***, ***, +44 (***, 900123"},
      {"+44 7700 900123", "+44 7700 900123, 447700900123, 7700.900.123, 7700900124", "+***, ***, ***, ***"},
      {"07700900123", "07700900123, +447700900123, 07700 900123, 123", "***, +***, ***, 123"},
      {"12345", "12345, 1 23 45, 312345, 345", "***, ***, 3***, 345"},
  };
  for (const auto& [number, text, masked] : cases) {
    support::Secrets secrets;
    secrets.addNumber(number);
    EXPECT_EQ(secrets.masked(text), masked);
  }
}

TEST(SignInTrace, WritesRequestsAsCommandsAndRepliesWithoutControls) {
  const auto secrets = std::make_shared<support::Secrets>();
  secrets->add("s3cret");
  const std::string body = R"({"mobile":"+4477","msg":"s3cret isn't ö"})";
  orvane::URLRequest request("http://example.test/a?b=s3cret");
  request.setMethod("POST");
  request.addValue("4", "xrapi-client-id");
  request.addValue("", "X-Empty");
  request.setBody({body.begin(), body.end()});
  const Trace trace({.proxy = "http://me:pa@ss@proxy.test",
                     .reroutes = {{.host = "example.test", .toHost = "::1", .toPort = 8080}}},
                    secrets);
  EXPECT_EQ(
      trace.requestLine(request),
      "curl -X POST --connect-to 'example.test:80:[::1]:8080' -x 'http://***@proxy.test' --noproxy '' -H "
      "'xrapi-client-id: ***' -H 'X-Empty;'"
      R"( --data-raw '{"mobile":"***","msg":"*** isn'\''t ö"}')"
      " 'http://example.test/a?b=***'");

  const std::string hostile = "\x1b[2J\ns3cret \xc2\x9b";
  const orvane::DataTaskResult reply{orvane::Bytes(hostile.begin(), hostile.end()), {{500}}, nullptr};
  EXPECT_EQ(trace.replyLine("http://a/s3cret", reply, std::chrono::milliseconds(12)),
            "http://a/***: 12 ms, status 500, 14 bytes: \\x1b[2J\\x0a*** \\xc2\\x9b");
  EXPECT_EQ(Trace({}, secrets).requestLine(orvane::URLRequest("http://a/\xc2\x9b'")),
            "curl -X GET --noproxy '*' $'http://a/\\xc2\\x9b\\''");
}

}  // namespace
}  // namespace signin
