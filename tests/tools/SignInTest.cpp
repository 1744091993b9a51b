#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <future>
#include <gtest/gtest.h>
#include <iterator>
#include <regex>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <unistd.h>
#include <utility>
#include <vector>

#include "tests/support/Conversation.h"
#include "tests/support/LoopbackServer.h"
#include "tools/devservice/IdentityService.h"
#include "tools/devservice/Server.h"
#include "tools/signin/Options.h"
#include "tools/signin/PictureView.h"
#include "tools/signin/Secrets.h"
#include "tools/signin/Trace.h"
#include "tools/signin/shellWord.h"

namespace signin {
namespace {

using orvane::test::Conversation;
using orvane::test::endOf;
using orvane::test::LoopbackServer;

/// The values that were understood, what is missing and where a service may be, or why nothing was understood.
std::string outcomeOf(const std::vector<const char*>& arguments) try {
  const Options options = parseOptions(arguments);
  std::string line;
  for (const auto& text : {options.mobile, options.clientId, options.captcha, options.code}) {
    line += text ? "<" + *text + "> " : "- ";
  }
  return line.append(options.missing()) + "|" + options.service();
} catch (const UsageError& error) {
  return error.what();
}

TEST(SignInOptions, AreUnderstoodOrRefused) {
  const std::string wrongAddress = "--connect: expected HOST:PORT or [IPV6]:PORT with a port from 1 to 65535";
  const std::pair<std::vector<const char*>, std::string> cases[] = {
      {{}, "- - - - --mobile|"},
      {{"--live", "--mobile=1", "--captcha", "2", "--code=3"}, "<1> - <2> <3> |"},
      {{"--client-id=", "--code=", "--mobile==--="}, "<=--=> <> - <> --captcha|"},
      {{"--mobile=9", "--auto", "--mobile=-1", "--only", "login", "--auto"}, "<-1> - - - --code|"},
      {{"--connect", "localhost:65535"}, "- - - - --mobile|localhost:65535"},
      {{"--connect=[::1]:8080", "--trace", "--unmasked"}, "- - - - --mobile|[::1]:8080"},
      {{"--live", "--proxy=http://a:b@[::1]:8080/"}, "- - - - --mobile|[::1]:8080"},
      {{"--connect=localhost:0"}, wrongAddress},
      {{"--connect=::1:80"}, wrongAddress},
      {{"--connect=a:1", "--live"}, "--live: cannot be used with --connect"},
      {{"--proxy=http://localhost:1", "--connect=a:1"}, "--proxy: needs --live"},
      {{"--connect=a:1", "--trace", "--unmasked"},
       "--unmasked: allowed only if the requests stay on this machine"},
      {{"--unmasked"}, "--unmasked: needs --trace"},
      {{"--json", "--picture", "-"}, "--picture -: cannot be used with --json"},
      {{"--only=code", "--picture=a"}, "--picture: not used by the call that --only names"},
      {{"--only=sms"}, "--only: sms not in {picture,code,login}"},
      {{"--auto=yes"}, "auto was given a disallowed flag override"},
      {{"--mobile"}, "--mobile: 1 required NUMBER missing"},
      {{"+4477"}, "The following argument was not expected: +4477"},
  };
  for (const auto& [words, outcome] : cases) EXPECT_EQ(outcomeOf(words), outcome);
}

TEST(SignInTrace, MasksBodies) {
  Secrets secrets;
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

TEST(SignInTrace, WritesLinesThatCanBePasted) {
  const std::pair<std::string, std::string> words[] = {
      {"a $b `c` \"d\" \\", "'a $b `c` \"d\" \\'"},
      {"it's", "'it'\\''s'"},
      {"two\nlines, one's \\", "$'two\\x0alines, one\\'s \\\\'"},
  };
  for (const auto& [text, word] : words) EXPECT_EQ(shellWord(text), word);

  const auto secrets = std::make_shared<Secrets>();
  secrets->add("s3cret");
  const std::string body = R"({"mobile":"+4477","msg":"s3cret isn't ö"})";
  orvane::URLRequest request("http://example.test/a?b=s3cret");
  request.setMethod("POST");
  request.addValue("4", "xrapi-client-id");
  request.addValue("", "X-Empty");
  request.setBody({body.begin(), body.end()});
  const orvane::HostSessionConfiguration configuration{
      .proxy = "http://me:pa@ss@proxy.test",
      .reroutes = {{.host = "example.test", .toHost = "::1", .toPort = 8080}}};
  const Trace trace(configuration, secrets);
  EXPECT_EQ(trace.requestLine(request),
            "curl -X POST --connect-to 'example.test:80:[::1]:8080' -x 'http://***@proxy.test' -H "
            "'xrapi-client-id: ***' -H 'X-Empty;'"
            R"( --data-raw '{"mobile":"***","msg":"*** isn'\''t ö"}')"
            " 'http://example.test/a?b=***'");

  const std::string hostile = "\x1b[2J\ns3cret \xc2\x9b";
  const orvane::DataTaskResult reply{orvane::Bytes(hostile.begin(), hostile.end()), {{500}}, nullptr};
  EXPECT_EQ(trace.replyLine("http://a/s3cret", reply, std::chrono::milliseconds(12)),
            "http://a/***: 12 ms, status 500, 14 bytes: \\x1b[2J\\x0a*** \\xc2\x9b");
}

/// Red and green over blue and white.
const std::uint8_t fourPixels[] = {
    0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a, 0x00, 0x00, 0x00, 0x0d, 0x49, 0x48, 0x44,
    0x52, 0x00, 0x00, 0x00, 0x02, 0x00, 0x00, 0x00, 0x02, 0x08, 0x02, 0x00, 0x00, 0x00, 0xfd,
    0xd4, 0x9a, 0x73, 0x00, 0x00, 0x00, 0x12, 0x49, 0x44, 0x41, 0x54, 0x78, 0xda, 0x63, 0xf8,
    0xcf, 0xc0, 0xc0, 0x00, 0xc2, 0x0c, 0xff, 0x81, 0x00, 0x00, 0x1f, 0xee, 0x05, 0xfb, 0xf1,
    0xab, 0xba, 0x77, 0x00, 0x00, 0x00, 0x00, 0x49, 0x45, 0x4e, 0x44, 0xae, 0x42, 0x60, 0x82};

TEST(SignInPicture, IsDrawnToFitUnlessDamaged) {
  const std::tuple<std::size_t, Palette, std::string> cases[] = {
      {2, Palette::indexed, "\x1b[38;5;196m\x1b[48;5;21m▀\x1b[38;5;46m\x1b[48;5;231m▀\x1b[0m\n"},
      {1, Palette::direct, "\x1b[38;2;127;127;0m\x1b[48;2;127;127;255m▀\x1b[0m\n"},
      {80, Palette::characters, "%.\n"},
  };
  for (const auto& [width, palette, view] : cases) {
    EXPECT_EQ(viewPicture(fourPixels, width, palette)->lines, view);
    EXPECT_EQ(viewPicture(fourPixels, width, palette)->isClear, palette != Palette::characters);
  }
  EXPECT_FALSE(viewPicture(std::vector<std::uint8_t>(1000, 0x2A), 80, Palette::direct));
  for (std::size_t size = 0; size < std::size(fourPixels) - 16; ++size) {
    EXPECT_FALSE(viewPicture(std::span(fourPixels).first(size), 80, Palette::direct)) << size;
  }
}

/// How the program ended: its exit status, or the signal as a negative number; and what it wrote.
struct Ending {
  int status;
  std::string out;
  std::string err;
};

/// Where this test may write.
std::string path(const std::string& name) {
  return testing::TempDir() + "signin-" + std::to_string(getpid()) + "-" + name;
}

std::string take(const std::string& name) {
  std::ifstream file(path(name), std::ios::binary);
  unlink(path(name).c_str());
  return {std::istreambuf_iterator<char>(file), {}};
}

/// Runs the program with nobody at its standard input, where it might leave a core file.
Ending run(const std::string& arguments) {
  const std::string files = " </dev/null >" + path("out") + " 2>" + path("err");
  const int status =
      std::system(("ulimit -c unlimited; exec '" SIGNIN_PROGRAM "' " + files + " " + arguments).c_str());
  EXPECT_FALSE(WCOREDUMP(status)) << arguments;
  return {endOf(status), take("out"), take("err")};
}

std::string connectTo(std::uint16_t port) {
  return "--connect=127.0.0.1:" + std::to_string(port);
}

TEST(SignInProgram, SignsInUnattended) {
  const Ending ending = run("--auto --mobile=+447700900987 --client-id=cl1ent --trace");
  EXPECT_EQ(ending.status, 0) << ending.err;
  const auto answerTo = [&](std::string_view question) {
    const std::size_t start = ending.out.find(question) + question.size();
    return ending.out.substr(start, ending.out.find('\n', start) - start);
  };
  const std::string captcha = answerTo("What does the picture say? ");
  const std::string code = answerTo("Code in the text message: ");
  EXPECT_NE(ending.out.find("  │ Orvane: your sign-in code is " + code + ". │\n"), std::string::npos);
  EXPECT_TRUE(ending.out.ends_with("\nSigned in. The service says: welcome\n")) << ending.out;
  for (const std::string& secret : {std::string("447700900987"), std::string("cl1ent"), captcha, code}) {
    EXPECT_EQ(ending.err.find(secret), std::string::npos) << secret << " in " << ending.err;
  }
  EXPECT_EQ(std::ranges::count(ending.err, '\n'), 12)
      << ending.err;  // four times a time, a request and its reply
  EXPECT_TRUE(std::regex_search(ending.err, std::regex(R"(^# \d\d:\d\d:\d\d\.\d\d\d\ncurl -X POST )")))
      << ending.err;
}

TEST(SignInProgram, TalksWithAPerson) {
  const std::string mobile = "+447700900123";
  devservice::IdentityService service;
  const devservice::Server server(service);
  // By the service as a proxy, which is all that an application would have to be told.
  const std::string proxy = "--proxy=http://127.0.0.1:" + std::to_string(server.port());
  Conversation talk({SIGNIN_PROGRAM, "--live", proxy});
  talk.hear("Mobile number: ");
  talk.say("\n" + mobile + "\n");  // an empty line is no answer
  const std::string before = talk.hear("What does the picture say? ");
  // Two lines of input, and the lines of the picture: 160 times 60 pixels in 40 columns, which are too few.
  EXPECT_EQ(std::ranges::count(before, '\n'), 2 + 8 + 1) << before;
  EXPECT_NE(before.find("If you cannot read it, save it with --picture FILE.\r\n"), before.npos);
  talk.say(" misread \n");
  talk.hear(
      "\norvane-signin: code: that is not the picture's text (refused, 2002)\r\nHere is a new picture.\r\n");
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

  const std::string body = R"({"code":0,"msg":"for 447700900123","data":[]})";
  const LoopbackServer quoting(
      [&](const auto&) { return LoopbackServer::Answer{orvane::test::reply(body)}; });
  Conversation traced({SIGNIN_PROGRAM, connectTo(quoting.port()), "--trace"});
  traced.say(mobile + "\n\x04");  // the end of the input
  traced.hear(R"("msg":"for ***")");
  traced.hear("\norvane-signin: --captcha: missing, and the input has ended\r\n");
  EXPECT_EQ(traced.status(), 2);
}

TEST(SignInProgram, MakesSingleCallsWithTheClientIdentifierGiven) {
  const std::string mobile = "+99900000401";  // the submission is answered late, and waited for
  devservice::IdentityService service;
  const devservice::Server server(service);
  const auto known = [&] { return service.inspect(mobile).value(); };
  const auto traceOf = [&](const std::string& arguments) {
    return run(connectTo(server.port()) + " --trace --mobile " + mobile + " --only=" + arguments).err;
  };
  // Both with the answers of its /inspect.
  EXPECT_EQ(run(connectTo(server.port()) + " --auto").status, 0);
  EXPECT_EQ(run("--live --auto --proxy=http://127.0.0.1:" + std::to_string(server.port())).status, 0);
  traceOf("picture");
  EXPECT_EQ(known().clientId, std::nullopt);
  traceOf("code --client-id= --captcha " + known().picture.value());
  EXPECT_EQ(known().clientId, "");
  const std::string trace = traceOf("login --client-id 'an app' --code " + known().code.value());
  EXPECT_EQ(known().clientId, "an app");
  EXPECT_NE(trace.find(" ms, status 200, 39 bytes: {\"code\":0,\"msg\":\"recorded\""), trace.npos) << trace;
}

TEST(SignInProgram, ReportsHowItEnded) {
  const std::string nobodyThere = connectTo(LoopbackServer(nullptr).port()) + " --mobile=1 --only=picture";
  const std::tuple<std::string, int, std::string> cases[] = {
      {"--picture=/a/b", 2, "orvane-signin: --picture: cannot write /a/b: No such file or directory\n"},
      {"--auto --captcha=no", 1, "orvane-signin: code: that is not the picture's text (refused, 2002)\n"},
      {"--mobile=+99900000302", -SIGABRT, "orvane: requestLogin: there is no reply\n"},
      {"--mobile=+99900000310", -SIGABRT, "orvane: requestLogin: the reply has no \"msg\"\n"},
      {"--mobile=+99900000105", 3,
       "orvane-signin: picture: The service's reply could not be read. (not readable, com.brovent.error "
       "-1)\n"},
      {nobodyThere, 3,
       "orvane-signin: picture: Could not connect to the server. (no connection, NSURLErrorDomain -1004)\n"},
      {nobodyThere + " --live", 2, "orvane-signin: --live: cannot be used with --connect\n"},
      {"--live", 2, "orvane-signin: --mobile: missing, and there is no development service to ask\n"},
      {nobodyThere.substr(0, nobodyThere.find(' ')), 2,
       "orvane-signin: --mobile: missing, and no development service answers at 127.0.0.1:"},
      {"--auto >/dev/full", 4, "orvane-signin: could not write to standard output\n"},
      {"--auto --picture - >/dev/full", 4, ""},
      {"--json >/dev/full", 4, "orvane-signin: could not write to standard output\n"},
  };
  for (const auto& [arguments, status, complaint] : cases) {
    const Ending ending = run(arguments);
    EXPECT_EQ(ending.status, status) << ending.err;
    EXPECT_TRUE(ending.err.starts_with(complaint)) << ending.err;
  }
}

// What is for a person, and what the library prints, must not get between the lines.
TEST(SignInProgram, TellsScriptsHowEachStepEnded) {
  const std::string png = path("png");
  const std::string nobodyThere = connectTo(LoopbackServer(nullptr).port()) + " --mobile=1 --only=picture";
  const std::tuple<std::string, int, std::ptrdiff_t, std::string> cases[] = {
      {"--picture " + png, 0, 3,
       R"({"step":"login","outcome":"success","domain":null,"code":0,"kind":null,"message":"welcome"})"},
      {"--only=picture --picture " + png, 0, 1,
       R"({"step":"picture","outcome":"success","domain":null,"code":0,"kind":null,"message":null,"picture":")" +
           png},
      {"--captcha=no", 1, 2,
       R"({"step":"code","outcome":"refusal","domain":"that is not the picture's text","code":2002,)"
       R"("kind":"refused","message":"that is not the picture's text"})"},
      {"--picture=/a/b", 2, 1,
       R"({"step":"picture","outcome":"usage","domain":null,"code":null,"kind":null,"message":"--picture: cannot)"},
      {"--mobile=\xff", 2, 1, R"({"step":null,"outcome":"usage",)"},
      {nobodyThere, 3, 1,
       R"({"step":"picture","outcome":"network","domain":"NSURLErrorDomain","code":-1004,"kind":"no connection","message":"Could)"},
      {"--mobile=+99900000105", 3, 1,
       R"({"step":"picture","outcome":"network","domain":"com.brovent.error",)"},
      {"--mobile=+99900000302", -SIGABRT, 3, R"({"step":"login","outcome":"aborted",)"},
  };
  for (const auto& [arguments, status, count, lastLine] : cases) {
    const Ending ending = run("--json " + arguments);
    EXPECT_EQ(ending.status, status) << ending.err;
    EXPECT_EQ(std::ranges::count(ending.out, '\n'), count) << ending.out;
    EXPECT_EQ(ending.out.compare(ending.out.rfind("{\"step"), lastLine.size(), lastLine), 0) << ending.out;
  }
  EXPECT_FALSE(take("png").empty());
}

TEST(SignInProgram, TellsWhatItWaitsForAndLeavesTheTerminalAsItWas) {
  using Then = LoopbackServer::Then;
  struct Case {
    std::string option;
    LoopbackServer::Answer answer;
    std::string typed;
    std::string heard;
    int status;
  };
  const LoopbackServer::Answer refusal{orvane::test::reply(R"({"code":7,"msg":"no"})")};
  const LoopbackServer::Answer silence{"", Then::hold};
  const Case cases[] = {
      {"--auto", refusal, "", "orvane-signin: picture: no (refused, 7)\r\n", 1},
      {"--trace", refusal, "", "# ", 1},
      {"--auto", {"", Then::close}, "", "orvane: requestPictureCode: NSURLErrorDomain (-1005)\r\n", 3},
      {"--auto", silence, "\x03", "\x1b[0m", -SIGINT},
      {"--json", silence, "\x03", "\x1b[0m{\"step\":\"picture\",\"outcome\":\"interrupted\"", -SIGINT},
  };
  for (const Case& each : cases) {
    std::promise<void> heard;
    const LoopbackServer server([&](const auto&) {
      heard.get_future().wait();
      return each.answer;
    });
    Conversation talk(
        {SIGNIN_PROGRAM, connectTo(server.port()), "--mobile=1", "--only=picture", each.option});
    talk.hear("Waiting for the picture ...");
    heard.set_value();
    talk.say(each.typed);
    talk.hear("\r\x1b[K");
    EXPECT_EQ(talk.hear(each.heard), "");
    EXPECT_EQ(talk.status(), each.status);
  }
  Conversation asked({SIGNIN_PROGRAM});
  asked.hear("Mobile number: ");
  asked.say("\x03");
  asked.hear("\x1b[0m");
  EXPECT_EQ(asked.status(), -SIGINT);

  // As behind a job that runs in the background, where the signal is for another.
  Conversation ignoring({"sh", "-c", "trap '' INT; exec " SIGNIN_PROGRAM " --only=picture"});
  ignoring.hear("Mobile number: ");
  ignoring.say("\x03\n12345\n");
  ignoring.hear("▀");
  EXPECT_EQ(ignoring.status(), 0);
}

TEST(SignInProgram, DrawsInColoursWhereTheyAreWanted) {
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{"TERM=xterm"}, "\x1b[38;5;"},
      {{"TERM=xterm", "COLORTERM=truecolor"}, "\x1b[38;2;"},
      {{"TERM=xterm", "COLORTERM=truecolor", "NO_COLOR=1"}, ""},
      {{"TERM=dumb"}, ""},
  };
  for (const auto& [environment, colour] : cases) {
    Conversation talk({SIGNIN_PROGRAM, "--auto", "--only=picture"}, environment);
    talk.hear("\r\n");  // behind the number
    const std::string picture = talk.hear("\r\n");
    const std::size_t start = picture.find("\x1b[38;");
    EXPECT_EQ(start == picture.npos ? "" : picture.substr(start, 7), colour) << picture;
  }
}

TEST(SignInProgram, SavesThePictureAsItCame) {
  const std::string body = R"({"code":0,"msg":"","data":[0,10,13,26,255]})";
  const LoopbackServer server([&](const auto&) { return LoopbackServer::Answer{orvane::test::reply(body)}; });
  const Ending ending = run(connectTo(server.port()) + " --only=picture --mobile=1 --picture " + path("png"));
  EXPECT_EQ(
      ending.out,
      "The picture (5 bytes) is in " + path("png") +
          ".\nThe picture (5 bytes) cannot be shown: it is not a PNG file, is damaged, or is too large.\n");
  EXPECT_EQ(take("png"), std::string("\0\n\r\x1a\xff", 5));
  EXPECT_EQ(run(connectTo(server.port()) + " --only=picture --mobile=1 --picture -").out,
            std::string("\0\n\r\x1a\xff", 5));
}

}  // namespace
}  // namespace signin
