// The calls of a sign-in from Objective-C.

#import <Orvane/Orvane.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <sanitizer/allocator_interface.h>
#include <thread>

#import "orvane/apple/AppleSession.h"
#include "orvane/host/HostSession.h"
#include "orvane/host/hostMainQueue.h"
#include "orvane/orvane.h"
#include "tests/apple/CannedSession.h"
#include "tests/apple/standins/standins.h"
#include "tests/support/FakeSession.h"
#include "tests/support/LoopbackServer.h"
#include "tools/devservice/IdentityService.h"
#include "tools/devservice/Server.h"

// Null in a build without a sanitizer.
extern "C" __attribute__((weak)) size_t __sanitizer_get_current_allocated_bytes();

namespace {

using orvane::DataTaskResult;
using orvane::test::CannedSession;
using orvane::test::failed;
using orvane::test::LoopbackServer;
using orvane::test::replied;
using orvane::test::reply;
using Answer = LoopbackServer::Answer;

std::shared_ptr<CannedSession> useCanned(std::vector<DataTaskResult> results) {
  const auto session = std::make_shared<CannedSession>(std::move(results));
  standins::setInnerSession(session);
  return session;
}

/// Makes a session that reaches the service at this port of this machine.
std::shared_ptr<orvane::URLSession> sessionTo(std::uint16_t port) {
  return std::make_shared<orvane::HostSession>(orvane::HostSessionConfiguration{
      .reroutes = {{std::string(orvane::serviceHost()), 80, "127.0.0.1", port}}});
}

enum class Call { picture, code, login };

/// Returns the bytes of an NSData, or of an NSString in UTF-8.
std::string bytesOf(id answer) {
  if (!answer) return "nil";
  const bool isText = [answer isKindOfClass:[NSString class]];
  NSData* const data = isText ? [answer dataUsingEncoding:NSUTF8StringEncoding] : answer;
  return {static_cast<const char*>([data bytes]), [data length]};
}

/// Returns the error's domain, its code, the number of entries in its user information, its kind and its
/// message: "Busy 7 0, refused: Busy".
std::string textOf(NSError* error) {
  if (!error) return "none";
  const std::string_view kind = orvane::errorKindNames.at(static_cast<std::size_t>(OVKindOfError(error)));
  return bytesOf([error domain]) + " " + std::to_string([error code]) + " " +
         std::to_string([[error userInfo] count]) + ", " + std::string(kind) + ": " +
         bytesOf(OVMessageOfError(error));
}

/// What a block received, and where.
struct Outcome {
  std::string answer;
  std::string error;
  bool isOnMainQueue = false;
};

/// Makes a call and runs the main queue until its block has been called.
Outcome perform(OrvaneManager* manager, Call call, NSString* mobile, NSString* read = nil) {
  __block Outcome outcome;
  const std::thread::id here = std::this_thread::get_id();
  const auto finished = ^(id answer, NSError* error) {
    outcome = {bytesOf(answer), textOf(error), std::this_thread::get_id() == here};
    orvane::hostMainQueue().stop();
  };
  if (call == Call::picture) [manager requestPictureCode:mobile finished:finished];
  if (call == Call::code)
    [manager requestCode:mobile
              codeNumber:read
                finished:^(NSError* error) {
                  finished(nil, error);
                }];
  if (call == Call::login) [manager requestLogin:mobile code:read finished:finished];
  orvane::hostMainQueue().run();
  return outcome;
}

TEST(SignInCalls, AWholeSignInOfEachManager) {
  devservice::IdentityService identities;
  const devservice::Server server(identities);
  standins::setInnerSession(sessionTo(server.port()));
  const auto text = [](const std::string& utf8) { return [NSString stringWithUTF8String:utf8.c_str()]; };
  @autoreleasepool {
    OrvaneManager* const own = [[[OrvaneManager alloc] init] autorelease];
    [[OrvaneManager shareManager] setClientId:@"+447700900001"];
    [own setAppClientId:@"+447700900002"];
    for (OrvaneManager* manager : {[OrvaneManager shareManager], own}) {
      NSString* const mobile = [manager clientId];
      const auto known = [&] { return identities.inspect(bytesOf(mobile)).value(); };
      const Outcome picture = perform(manager, Call::picture, mobile);
      ASSERT_TRUE(picture.answer.starts_with("\x89PNG")) << picture.answer.substr(0, 80);
      EXPECT_EQ(perform(manager, Call::code, mobile, text(*known().picture)).error, "none");
      const Outcome login = perform(manager, Call::login, mobile, text(*known().code));
      EXPECT_EQ(login.answer, "welcome");
      EXPECT_EQ(login.error, "none");
      while (!known().facts) std::this_thread::yield();
      EXPECT_EQ(known().facts->at("carrier"), "Carrier");
      EXPECT_EQ(known().clientId, bytesOf(mobile));
    }
    [[OrvaneManager shareManager] setClientId:nil];
  }
}

TEST(SignInCalls, OutcomesComeAsTheyAreAndWhereTheyShould) {
  LoopbackServer server;
  standins::setInnerSession(sessionTo(server.port()));
  struct Row {
    const char* what;
    Call call;
    const char* json;  // Null if the connection ends without a reply.
    std::string received;
    std::string error;
    bool isOnMainQueue;
  };
  const std::string nul("a\0", 2);
  const Row rows[] = {
      {"accepted", Call::code, R"({"code":0})", "nil", "none", true},
      {"an empty picture", Call::picture, R"({"code":0,"data":[]})", "", "none", true},
      {"refused", Call::code, R"({"code":-7,"msg":"Bu\ud83d\ude00sy"})", "nil", "Bu😀sy -7 0, refused: Bu😀sy",
       true},
      {"a refused login", Call::login, R"({"code":9,"msg":"a\u0000"})", nul, nul + " 1 0, refused: " + nul,
       true},
      {"not JSON", Call::code, "", "nil",
       "com.brovent.error -1 1, not readable: The service's reply could not be read.", false},
      // Two of the entries are not texts. Only the platform's own error object has them.
      {"no reply", Call::code, nullptr, "nil",
       "NSURLErrorDomain -1005 5, no connection: The connection to the server was lost.", false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    server.setScript([&](const auto&) {
      return row.json ? Answer{reply(row.json)} : Answer{"", LoopbackServer::Then::close};
    });
    const Outcome outcome = perform([OrvaneManager shareManager], row.call, @"1", @"2");
    EXPECT_EQ(outcome.answer, row.received);
    EXPECT_EQ(outcome.error, row.error);
    EXPECT_EQ(outcome.isOnMainQueue, row.isOnMainQueue);
  }
}

TEST(SignInCalls, NilIsAnEmptyTextOrNoBlock) {
  useCanned({replied(R"({"code":3,"msg":""})")});
  OrvaneManager* const manager = [OrvaneManager shareManager];
  NSString* none = nil;
  id noBlock = nil;
  [manager requestPictureCode:none finished:noBlock];
  [manager requestCode:none codeNumber:none finished:noBlock];
  [manager requestLogin:none code:none finished:noBlock];
  // After those three on the main queue.
  EXPECT_EQ(perform(manager, Call::code, @"").error, " 3 0, refused: The service refused the request.");

  LoopbackServer server{[](const auto&) { return Answer{reply(R"({"code":0})")}; }};
  standins::setInnerSession(sessionTo(server.port()));
  [manager setClientId:[[[BrokenText alloc] init] autorelease]];
  EXPECT_EQ(perform(manager, Call::code, none).error, "none");
  EXPECT_EQ(server.requests().at(0).body, R"({"captcha":"","mobile":""})");
  EXPECT_TRUE(server.requests().at(0).hasLine("XRAPI-CLIENT-ID: \uFFFD😀\uFFFDa"));
  [manager setClientId:nil];
}

void useSession(NSString* address) {
  NSURL* const url = address ? [NSURL URLWithString:address] : nil;
  [NSClassFromString(@"Orvane.OVSession") useSession:nil
                                             address:url
                                        failureWords:^(NSError* cause) {
                                          return [@"No login: " stringByAppendingString:[cause domain]];
                                        }];
}

/// Ends the process well unless `act` stops it. The session reports neither a body nor an error.
void leaveAfter(void (*act)()) {
  @autoreleasepool {
    useCanned({DataTaskResult()});
    act();
  }
  _exit(0);
}

TEST(SignInCallsDeathTest, FatalCasesStopTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  struct Row {
    void (*act)();
    const char* complaint;
  };
  const Row rows[] = {
      {[] { perform([OrvaneManager shareManager], Call::code, @"1", @"2"); }, "neither a body nor an error"},
      {[] {
         perform([OrvaneManager shareManager], Call::code, [[[BrokenText alloc] init] autorelease], @"");
       },
       "cannot be represented"},
      {[] {
         NSURLSession* none = nil;
         const orvane::AppleSession session(none);
       },
       "there is no NSURLSession"},
      {[] { [OVDeviceInfoTool getSystemName], useSession(nil); }, "OVSession: the library is in use"},
  };
  for (const Row& row : rows)
    EXPECT_EXIT(leaveAfter(row.act), testing::KilledBySignal(SIGABRT), row.complaint)
        << "row " << &row - rows;
}

void callByAnotherSession() {
  const auto chosen = std::make_shared<CannedSession>(std::vector{replied(R"({"code":0})")});
  useSession(@"http://not.used.example");
  [OVSession useSession:standins::sessionOver(chosen) address:nil failureWords:nil];
  EXPECT_EQ(perform([OrvaneManager shareManager], Call::code, @"1").error, "none");
  EXPECT_EQ(chosen->visited, std::string(orvane::serviceBaseURL()) + "/tenant/getVerifyCode ");
  _exit(testing::Test::HasFailure() ? 1 : 0);
}

/// Logs in through a network that wants a sign-in of its own, and without a network.
void failInTheApplicationsWords() {
  const auto session =
      useCanned({replied("<html>Sign in to this network</html>"), failed({"NSURLErrorDomain", -1009, {}})});
  useSession(@"https://own.example/v1/");
  for (const auto& [domain, kind] :
       {std::pair("com.brovent.error", "not readable"), std::pair("NSURLErrorDomain", "no connection")}) {
    const std::string words = std::string("No login: ") + domain;
    const Outcome outcome = perform([OrvaneManager shareManager], Call::login, @"1", @"2");
    EXPECT_EQ(outcome.answer, words);
    EXPECT_EQ(outcome.error, words + " 1 2, " + kind + ": " + words);
    EXPECT_TRUE(outcome.isOnMainQueue);
  }
  const std::string login = "https://own.example/v1/tenant/submitVerifyCode ";
  EXPECT_EQ(session->visited, login + login);
  _exit(testing::Test::HasFailure() ? 1 : 0);
}

TEST(SignInCallsDeathTest, GoThroughTheSessionThatIsChosen) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const testing::ExitedWithCode well(0);
  EXPECT_EXIT(callByAnotherSession(), well, "");
  EXPECT_EXIT(failInTheApplicationsWords(), well, "");
}

std::size_t bytesInUse() {
  return __sanitizer_get_current_allocated_bytes ? __sanitizer_get_current_allocated_bytes()
                                                 : mallinfo2().uordblks;
}

TEST(SignInCalls, NothingLeaks) {
  // In the order of the requests below. The last result is that of the report.
  const auto session =
      useCanned({replied(R"({"code":0,"data":[1,2,3]})"), replied(R"({"code":3,"msg":"Busy"})"),
                 failed({"NSURLErrorDomain", -1005, {{"reason", "lost"}}}),
                 replied(R"({"code":0,"msg":"welcome"})"), replied("{}")});
  std::size_t before = 0;
  constexpr int warmUp = 100;
  constexpr int rounds = 2500;
  for (int i = 0; i < warmUp + rounds; ++i) {
    if (i == warmUp) before = bytesInUse();
    session->visited.clear();  // It would grow like a leak.
    @autoreleasepool {
      NSString* const text = [NSString stringWithFormat:@"a text of its own, with the number %d", i];
      OrvaneManager* const manager = [[[OrvaneManager alloc] init] autorelease];
      [manager setClientId:text];
      EXPECT_EQ(perform(manager, Call::picture, text).answer, "\1\2\3");
      EXPECT_EQ(perform(manager, Call::code, text, text).error, "Busy 3 0, refused: Busy");
      EXPECT_EQ(perform(manager, Call::code, text, text).error,
                "NSURLErrorDomain -1005 3, no connection: There is no connection to the service.");
      EXPECT_EQ(perform(manager, Call::login, text, text).answer, "welcome");
    }
  }
  EXPECT_LT(bytesInUse(), before + rounds * sizeof(void*));
}

}  // namespace
