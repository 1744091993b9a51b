#include <algorithm>
#include <csignal>
#include <cstdint>
#include <future>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <regex>
#include <string>
#include <string_view>
#include <tuple>

#include "tests/support/Conversation.h"
#include "tests/support/LoopbackServer.h"
#include "tools/devservice/IdentityService.h"
#include "tools/devservice/Server.h"

namespace {

using Json = nlohmann::json;
using orvane::test::Conversation;
using orvane::test::Ended;
using orvane::test::endOf;
using orvane::test::LoopbackServer;

/// Runs the program without a terminal, where it might leave a core file. The status is that of endOf().
Ended run(const std::string& arguments) {
  Ended ended =
      orvane::test::runShell("ulimit -c unlimited; exec '" SIGNIN_PROGRAM "' </dev/null " + arguments);
  EXPECT_FALSE(WCOREDUMP(ended.status)) << arguments;
  ended.status = endOf(ended.status);
  return ended;
}

std::string connectTo(std::uint16_t port) {
  return "--connect=127.0.0.1:" + std::to_string(port);
}

LoopbackServer::Answer answer(const std::string& body) {
  return {orvane::test::reply(body)};
}

TEST(SignInProgram, SignsInUnattended) {
  const Ended ending = run("--auto --mobile=+447700900987 --client-id=cl1ent --trace");
  EXPECT_EQ(ending.status, 0) << ending.errors;
  const auto answerTo = [&](std::string_view question) {
    const std::size_t start = ending.output.find(question) + question.size();
    return ending.output.substr(start, ending.output.find('\n', start) - start);
  };
  const std::string captcha = answerTo("What does the picture say? ");
  const std::string code = answerTo("Code in the text message: ");
  EXPECT_NE(ending.output.find("  │ Orvane: your sign-in code is " + code + ". │\n"), std::string::npos);
  EXPECT_TRUE(ending.output.ends_with("\nSigned in. The service says: welcome\n")) << ending.output;
  for (const std::string& secret : {std::string("447700900987"), std::string("cl1ent"), captcha, code}) {
    EXPECT_EQ(ending.errors.find(secret), std::string::npos) << secret << " in " << ending.errors;
  }
  // Four times a time, a request, and a reply with its time.
  EXPECT_EQ(std::ranges::count(ending.errors, '\n'), 12) << ending.errors;
  EXPECT_TRUE(std::regex_search(ending.errors, std::regex(R"(^# \d\d:\d\d:\d\d\.\d\d\d\ncurl -X POST )")))
      << ending.errors;
}

TEST(SignInProgram, PrintsNothingThatControlsATerminal) {
  const std::string text = R"(a\u001b]52;c;YQ==\u0007\u009b2J)";
  const LoopbackServer server([&](const LoopbackServer::Request& request) {
    std::string body = R"({"code":"TEXT","picture":"TEXT","message":"TEXT"})";
    if (request.head.starts_with("GET /inspect?mobile= ")) body = R"({"code":1011})";
    if (request.head.starts_with("POST")) body = R"({"code":0,"data":[1],"msg":"TEXT"})";
    return answer(std::regex_replace(body, std::regex("TEXT"), text));
  });
  for (const char* options : {"--trace", "--trace --unmasked --client-id '\xc2\x9b'", "--json"}) {
    const Ended ending = run(connectTo(server.port()) + " --mobile=+447700900123 " + options);
    EXPECT_EQ(ending.status, 0) << ending.errors;
    const std::string all = ending.output + ending.errors;
    EXPECT_EQ(std::regex_replace(all, std::regex("[\\x01-\\x09\\x0b-\\x1f\\x7f]|\xc2[\x80-\x9f]"), "!"), all);
    EXPECT_NE(all.find("2J"), all.npos);
  }
}

TEST(SignInProgram, TalksWithAPerson) {
  const std::string mobile = "+447700900123";
  devservice::IdentityService service;
  const devservice::Server server(service);
  // Through the service as a proxy, as an application can.
  const std::string proxy = "--proxy=http://127.0.0.1:" + std::to_string(server.port());
  Conversation talk({SIGNIN_PROGRAM, "--live", proxy});
  talk.hear("Mobile number: ");
  talk.say("\n" + mobile + "\n");  // An empty line is not an answer.
  const std::string before = talk.hear("What does the picture say? ");
  // Two lines of input, and the lines of the picture: 160 times 60 pixels in 40 columns, which are too few.
  EXPECT_EQ(std::ranges::count(before, '\n'), 2 + 8 + 1) << before;
  EXPECT_NE(before.find("If you cannot read it, save it with --picture FILE.\r\n"), before.npos);
  talk.say(" misread \n");
  talk.hear("\norvane-signin: code: that is not the picture's text (refused, 2002)\r\n");
  talk.hear("Here is a new picture.\r\n");
  talk.hear("What does the picture say? ");
  talk.say("\t " + service.inspect(mobile)->picture.value() + " \n");
  talk.hear("Code in the text message: ");
  for (int tries = 0; tries < 2; ++tries) {
    talk.say("none\n");
    talk.hear("\norvane-signin: login: that is not the code (refused, 1)\r\n");
    talk.hear("Code in the text message: ");
  }
  talk.say(service.inspect(mobile)->code.value() + "\n");
  talk.hear("Signed in. The service says: welcome\r\n");
  EXPECT_EQ(talk.status(), 0);

  Conversation wrong({SIGNIN_PROGRAM, connectTo(server.port()), "--mobile", mobile});
  for (int tries = 0; tries < 3; ++tries) {
    wrong.hear("What does the picture say? ");
    wrong.say("misread\n");
    wrong.hear("(refused, 2002)\r\n");
  }
  EXPECT_EQ(wrong.status(), 1);

  Conversation traced({SIGNIN_PROGRAM, "--trace"});
  for (int tries = 0; tries < 3; ++tries) {
    traced.hear("Mobile number: ");
    traced.say("+44 7700 900123\n");
    traced.hear("\norvane-signin: picture: not a mobile number: +*** (refused, 1004)\r\n");
  }
  EXPECT_EQ(traced.status(), 1);

  Conversation silent({SIGNIN_PROGRAM});
  silent.say("\x04");  // The end of the input.
  silent.hear("\norvane-signin: --mobile: missing, and the input has ended\r\n");
  EXPECT_EQ(silent.status(), 2);
}

TEST(SignInProgram, MakesSingleCallsWithTheClientIdentifierGiven) {
  const std::string mobile = "+999000004010060";  // The submission is answered late, and waited for.
  devservice::IdentityService service;
  const devservice::Server server(service);
  const auto known = [&] { return service.inspect(mobile).value(); };
  const auto traceOf = [&](const std::string& arguments) {
    return run(connectTo(server.port()) + " --trace --mobile " + mobile + " --only=" + arguments).errors;
  };
  // Both with a number of their own, and with the answers of its /inspect.
  EXPECT_EQ(run(connectTo(server.port()) + " --auto").status, 0);
  EXPECT_EQ(run("--live --auto --proxy=http://127.0.0.1:" + std::to_string(server.port())).status, 0);
  EXPECT_EQ(service.size(), 2);
  traceOf("picture");
  EXPECT_EQ(known().clientId, std::nullopt);
  traceOf("code --client-id= --captcha " + known().picture.value());
  EXPECT_EQ(known().clientId, "");
  const std::string trace = traceOf("login --client-id 'an app' --code " + known().code.value());
  EXPECT_EQ(known().clientId, "an app");
  EXPECT_NE(trace.find(" ms, status 200, 39 bytes: {\"code\":0,\"msg\":\"recorded\""), trace.npos) << trace;
}

/// Returns the step, outcome, code and kind in a line of --json. After a failure its message must be on
/// standard error as well.
std::string summary(const std::string& line, const Ended& ending) {
  const Json object = Json::parse(line, nullptr, false);
  if (!object.is_object()) return line;
  const Json& message = object["message"];
  EXPECT_TRUE(ending.status <= 0 || ending.errors.find(message.get<std::string>()) != line.npos) << line;
  std::string texts;
  for (const auto name : {"step", "outcome", "code", "kind"}) texts += object[name].dump() + " ";
  return texts;
}

// What is for a person, and what the library prints, must not get between the lines for scripts.
TEST(SignInProgram, ReportsHowItEnded) {
  const std::string unreachable = connectTo(LoopbackServer(nullptr).port());
  const std::tuple<std::string, int, std::ptrdiff_t, std::string, std::string> cases[] = {
      // Arguments, status, lines on standard output, the last of them, and a part of standard error.
      {"--picture /dev/stderr", 0, 3, R"("login" "success" 0 null )", "\x89PNG"},
      {"--captcha=no", 1, 2, R"("code" "refusal" 2002 "refused" )", "code: that is not the picture's text ("},
      {"--picture=/a/b", 2, 1, R"("picture" "usage" null null )", "--picture: cannot write /a/b: No such "},
      {"--har=/a/b", 2, 1, R"(null "usage" null null )",
       "--har: cannot write /a/b: No such file or directory\n"},
      {"--mobile=\xff", 2, 1, R"(null "usage" null null )", "--mobile: not UTF-8\n"},
      {"--live", 2, 0, "", "--mobile: missing, and there is no development service to ask\n"},
      {unreachable, 2, 1, R"(null "usage" null null )",
       "--mobile: missing, and no development service answers"},
      {unreachable + " --mobile=1 --only=picture", 3, 1, R"("picture" "network" -1004 "no connection" )",
       "picture: Could not connect to the server. (no connection, NSURLErrorDomain -1004)\n"},
      {"--mobile=+99900000105", 3, 1, R"("picture" "network" -1 "not readable" )",
       "picture: The service's reply "},
      {"--mobile=+99900000302", -SIGABRT, 3, R"("login" "aborted" null null )",
       "requestLogin: there is no reply\n"},
  };
  for (const auto& [arguments, status, count, lastLine, complaint] : cases) {
    SCOPED_TRACE(arguments);
    const Ended ending = run("--json " + arguments);
    EXPECT_EQ(ending.status, status) << ending.errors;
    EXPECT_EQ(std::ranges::count(ending.output, '\n'), count) << ending.output;
    EXPECT_EQ(summary(ending.output.substr(count > 0 ? ending.output.rfind("{\"step") : 0), ending),
              lastLine);
    EXPECT_NE(ending.errors.find(complaint), std::string::npos) << ending.errors;
  }
  const Ended saved = run("--json --only=picture --picture /dev/stderr");
  EXPECT_EQ(saved.output,
            R"({"step":"picture","outcome":"success","domain":null,"code":0,"kind":null,"message":null,)"
            R"("picture":"/dev/stderr"})"
            "\n");
  for (const std::string& picture : {saved.errors, run("--only=picture --picture -").output}) {
    EXPECT_TRUE(picture.starts_with("\x89PNG") && picture.ends_with("IEND\xae\x42\x60\x82")) << picture;
  }
  for (const char* options : {"--auto", "--picture -", "--json"}) {
    const Ended full = run(std::string(options) + " >/dev/full");
    EXPECT_EQ(full.status, 4) << options;
    EXPECT_TRUE(full.errors.ends_with("orvane-signin: could not write to standard output\n")) << full.errors;
  }
}

TEST(SignInProgram, TellsWhatItWaitsForAndLeavesTheTerminalAsItWas) {
  std::signal(SIGINT, SIG_DFL);  // A shell may have started these tests to ignore it.
  using Then = LoopbackServer::Then;
  const LoopbackServer::Answer refusal = answer(R"({"code":7,"msg":"no"})");
  const LoopbackServer::Answer silence{"", Then::hold};
  using Answer = LoopbackServer::Answer;
  const std::tuple<std::string, Answer, std::string, std::string, int> cases[] = {
      // Option, answer, what is typed and heard then, status.
      {"--auto", refusal, "", "orvane-signin: picture: no (refused, 7)\r\n", 1},
      {"--auto", Answer{"", Then::close}, "", "orvane: requestPictureCode: NSURLErrorDomain (-1005)\r\n", 3},
      {"--auto", silence, "\x03", "\x1b[0m", -SIGINT},
      {"--json", silence, "\x03", "\x1b[0m{\"step\":\"picture\",\"outcome\":\"interrupted\"", -SIGINT},
  };
  for (const auto& [option, reply, typed, last, status] : cases) {
    SCOPED_TRACE(last);
    std::promise<void> heard;
    const LoopbackServer server([&heard, reply = reply](const auto&) {
      heard.get_future().wait();
      return reply;
    });
    Conversation talk({SIGNIN_PROGRAM, connectTo(server.port()), "--mobile=1", "--only=picture", option});
    talk.hear("Waiting for the picture ...");
    heard.set_value();
    talk.say(typed);
    talk.hear("\r\x1b[K");
    EXPECT_EQ(talk.hear(last), "");
    EXPECT_EQ(talk.status(), status);
  }
  Conversation asked({SIGNIN_PROGRAM});
  asked.hear("Mobile number: ");
  asked.say("\x03");
  asked.hear("\x1b[0m");
  EXPECT_EQ(asked.status(), -SIGINT);
}

}  // namespace
