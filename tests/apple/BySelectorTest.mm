// The calls of a sign-in, made by a caller that knows only the selectors.

#import <Orvane/Orvane.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <sanitizer/allocator_interface.h>
#include <thread>

#import "orvane/apple/AppleSession.h"
#include "orvane/host/HostSession.h"
#include "orvane/host/hostMainQueue.h"
#include "orvane/orvane.h"
#include "tests/apple/send.h"
#include "tests/apple/standins/standins.h"
#include "tests/support/AdapterUnderTest.h"
#include "tests/support/LoopbackServer.h"
#include "tools/devservice/IdentityService.h"
#include "tools/devservice/Server.h"

// Null in a build without a sanitizer.
extern "C" __attribute__((weak)) size_t __sanitizer_get_current_allocated_bytes();

namespace {

using orvane::DataTaskResult;
using orvane::test::classNamed;
using orvane::test::LoopbackServer;
using orvane::test::reply;
using orvane::test::send;
using Answer = LoopbackServer::Answer;

/// Calls each handler at once, with one result after the other.
class CannedSession final : public orvane::URLSession {
 public:
  explicit CannedSession(std::vector<DataTaskResult> results) : results_(std::move(results)) {}

  void startDataTask(orvane::URLRequest request, orvane::DataTaskHandler handler) override {
    lastURL = request.url();
    handler(results_[next_++ % results_.size()]);
  }
  void cancelAllOperations() override {}

  inline static std::string lastURL;

 private:
  std::vector<DataTaskResult> results_;
  std::size_t next_ = 0;
};

void useCanned(std::vector<DataTaskResult> results) {
  standins::setInnerSession(std::make_shared<CannedSession>(std::move(results)));
}

DataTaskResult success(std::string_view body) {
  return {orvane::Bytes(body.begin(), body.end()), orvane::HTTPResponse{200}, nullptr};
}

const DataTaskResult lost = {
    std::nullopt, std::nullopt,
    std::make_shared<const orvane::Error>(orvane::Error{"NSURLErrorDomain", -1005, {{"reason", "lost"}}})};

constexpr const char* pictureCall = "requestPictureCode:finished:";
constexpr const char* codeCall = "requestCode:codeNumber:finished:";
constexpr const char* loginCall = "requestLogin:code:finished:";

id sharedManager() {
  return send<id>(classNamed("OrvaneManager"), "shareManager");
}

/// Returns the bytes of an NSData, or of an NSString in UTF-8.
std::string bytesOf(id answer) {
  if (!answer) return "nil";
  const bool isText = [answer isKindOfClass:[NSString class]];
  NSData* const data = isText ? [answer dataUsingEncoding:NSUTF8StringEncoding] : answer;
  return {static_cast<const char*>([data bytes]), [data length]};
}

/// What a block received, and where. `error` is domain, code, and number of entries in the user information.
struct Outcome {
  std::string answer;
  std::string error;
  bool isOnMainQueue = false;
  const void* errorObject = nullptr;
};

/// Makes a call and runs the main queue until its block has been called.
Outcome perform(id manager, const char* call, NSString* mobile, NSString* read = nil) {
  __block Outcome outcome;
  const std::thread::id here = std::this_thread::get_id();
  const auto finished = ^(id answer, NSError* error) {
    outcome = {bytesOf(answer), "none", std::this_thread::get_id() == here, error};
    if (error)
      outcome.error = bytesOf([error domain]) + " " + std::to_string([error code]) + " " +
                      std::to_string([[error userInfo] count]);
    orvane::hostMainQueue().stop();
  };
  if (call == pictureCall) send(manager, call, mobile, finished);
  if (call == codeCall)
    send(manager, call, mobile, read, ^(NSError* error) {
      finished(nil, error);
    });
  if (call == loginCall) send(manager, call, mobile, read, finished);
  orvane::hostMainQueue().run();
  return outcome;
}

/// Signs in, and reads the picture's text and the code from the service.
void signIn(id manager, NSString* mobile, devservice::IdentityService& identities) {
  const auto known = [&] { return identities.inspect([mobile UTF8String]).value(); };
  const auto text = [](const std::string& utf8) { return [NSString stringWithUTF8String:utf8.c_str()]; };
  const Outcome picture = perform(manager, pictureCall, mobile);
  ASSERT_TRUE(picture.answer.starts_with("\x89PNG")) << picture.answer.substr(0, 80);
  EXPECT_EQ(perform(manager, codeCall, mobile, text(*known().picture)).error, "none");
  const Outcome login = perform(manager, loginCall, mobile, text(*known().code));
  EXPECT_EQ(login.answer, "welcome");
  EXPECT_EQ(login.error, "none");
  while (!known().facts) std::this_thread::yield();
  EXPECT_EQ(known().facts->at("carrier"), "Carrier");
}

TEST(BySelector, AWholeSignInOfEachManager) {
  devservice::IdentityService identities;
  const devservice::Server server(identities);
  orvane::test::installAdapter(server.port());
  @autoreleasepool {
    const id shared = sharedManager();
    const id own = [[[classNamed("Orvane.OrvaneManager") alloc] init] autorelease];
    send(shared, "setClientId:", @"one");
    send(own, "setAppClientId:", @"two");
    signIn(shared, @"+447700900001", identities);
    signIn(own, @"+447700900002", identities);
    EXPECT_EQ(identities.inspect("+447700900001")->clientId, "one");
    EXPECT_EQ(identities.inspect("+447700900002")->clientId, "two");
    [shared setClientId:nil];
  }
}

TEST(BySelector, OutcomesComeAsTheyAreAndWhereTheyShould) {
  LoopbackServer server;
  orvane::test::installAdapter(server.port());
  struct Row {
    const char* what;
    const char* call;
    const char* json;  // Null if the connection ends without a reply.
    std::string received;
    std::string error;
    bool isOnMainQueue;
  };
  const Row rows[] = {
      {"accepted", codeCall, R"({"code":0})", "nil", "none", true},
      {"an empty picture", pictureCall, R"({"code":0,"data":[]})", "", "none", true},
      {"refused", codeCall, R"({"code":-7,"msg":"Bu\ud83d\ude00sy"})", "nil", "Bu😀sy -7 0", true},
      {"a refused login", loginCall, R"({"code":9,"msg":"a\u0000"})", {"a\0", 2}, {"a\0 1 0", 6}, true},
      {"not JSON", codeCall, "", "nil", "com.brovent.error -1 1", false},
      {"no reply", codeCall, nullptr, "nil", "NSURLErrorDomain -1005 5", false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    server.setScript([&](const auto&) {
      return row.json ? Answer{reply(row.json)} : Answer{"", LoopbackServer::Then::close};
    });
    const Outcome outcome = perform(sharedManager(), row.call, @"1", @"2");
    EXPECT_EQ(outcome.answer, row.received);
    EXPECT_EQ(outcome.error, row.error);
    EXPECT_EQ(outcome.isOnMainQueue, row.isOnMainQueue);
    if (row.error.starts_with("NSURL")) EXPECT_EQ(outcome.errorObject, standins::latestError());
  }
}

TEST(BySelector, NilIsAnEmptyTextOrNoBlock) {
  useCanned({success(R"({"code":3,"msg":""})")});
  const id manager = sharedManager();
  NSString* const none = nil;
  send(manager, pictureCall, none, none);
  send(manager, codeCall, none, none, none);
  send(manager, loginCall, none, none, none);
  // After those three on the main queue.
  EXPECT_EQ(perform(manager, codeCall, @"").error, " 3 0");

  LoopbackServer server{[](const auto&) { return Answer{reply(R"({"code":0})")}; }};
  orvane::test::installAdapter(server.port());
  [manager setClientId:[[[BrokenText alloc] init] autorelease]];
  EXPECT_EQ(perform(manager, codeCall, none).error, "none");
  EXPECT_EQ(server.requests().at(0).body, R"({"captcha":"","mobile":""})");
  EXPECT_TRUE(server.requests().at(0).hasLine("XRAPI-CLIENT-ID: \uFFFD😀\uFFFDa"));
  [manager setClientId:nil];
}

/// Ends the process well unless `act` stops it.
void leaveAfter(void (*act)(), const DataTaskResult& result) {
  @autoreleasepool {
    useCanned({result});
    act();
  }
  _exit(0);
}

TEST(BySelectorDeathTest, FatalCasesStopTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  struct Row {
    const char* what;
    void (*act)();
    DataTaskResult result;
    const char* complaint;
  };
  const auto logIn = [] { perform(sharedManager(), loginCall, @"1", @"2"); };
  const auto requestCode = [] { perform(sharedManager(), codeCall, @"1", @"2"); };
  const Row rows[] = {
      {"a failed login", logIn, lost, "requestLogin: there is no reply"},
      {"a reply without its member", requestCode, success(R"({"code":5})"), "requestCode"},
      {"neither body, response nor error", requestCode, DataTaskResult(), "requestJSON"},
      {"a mobile number that UTF-8 cannot hold",
       [] { perform(sharedManager(), codeCall, [[[BrokenText alloc] init] autorelease], @""); },
       success(R"({"code":0})"), "cannot be represented"},
      {"no vendor identifier", [] { [OVDeviceInfoTool getMEIDCode]; }, lost, "no vendor identifier"},
      {"no session",
       [] {
         NSURLSession* none = nil;
         const orvane::AppleSession session(none);
       },
       lost, "there is no NSURLSession"},
  };
  for (const Row& row : rows)
    EXPECT_EXIT(leaveAfter(row.act, row.result), testing::KilledBySignal(SIGABRT), row.complaint) << row.what;
}

/// A debug build in a simulator: the development service is the proxy of the application's session.
void signInThroughAProxy() {
  devservice::IdentityService identities;
  const devservice::Server server(identities);
  NSURLSessionConfiguration* const configuration = [NSURLSessionConfiguration ephemeralSessionConfiguration];
  [configuration setConnectionProxyDictionary:@{
    @"HTTPEnable" : @1,
    @"HTTPProxy" : @"127.0.0.1",
    @"HTTPPort" : @(static_cast<int>(server.port()))
  }];
  [OVSession useSession:[NSURLSession sessionWithConfiguration:configuration]
         failureMessage:@"No connection."];
  signIn(sharedManager(), @"+447700900004", identities);
  _exit(testing::Test::HasFailure() ? 1 : 0);
}

void useSession(BOOL encrypted) {
  send(classNamed("Orvane.OVSession"), "useSession:failureMessage:encrypted:", [NSURLSession sharedSession],
       @"No connection.", encrypted);
}

/// Logs in, and receives status 200 and a page of HTML.
void logInBehindAPortal(BOOL encrypted) {
  useCanned({success("<html>Sign in to this network</html>")});
  useSession(encrypted);
  const Outcome outcome = perform(sharedManager(), loginCall, @"1", @"2");
  EXPECT_EQ(outcome.answer, "No connection.");
  EXPECT_EQ(outcome.error, "No connection. 1 0");
  EXPECT_TRUE(outcome.isOnMainQueue);
  EXPECT_TRUE(CannedSession::lastURL.starts_with(encrypted ? "https://" : "http://"))
      << CannedSession::lastURL;
  _exit(testing::Test::HasFailure() ? 1 : 0);
}

TEST(BySelectorDeathTest, ASessionIsChosenBeforeTheFirstUseAndOnce) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const testing::ExitedWithCode well(0);
  EXPECT_EXIT(signInThroughAProxy(), well, "");
  EXPECT_EXIT(logInBehindAPortal(NO), well, "");
  EXPECT_EXIT(logInBehindAPortal(YES), well, "");

  const std::pair<const char*, void (*)()> uses[] = {
      {"a choice", [] { useSession(NO); }},
      {"a call", [] { perform(sharedManager(), codeCall, @"1", @"2"); }},
      {"a reading", [] { [OVDeviceInfoTool getSystemName]; }},
  };
  for (const auto& [what, use] : uses) {
    const auto choose = [use = use] {
      useCanned({success(R"({"code":0})")});
      use();
      useSession(NO);
      _exit(0);
    };
    EXPECT_EXIT(choose(), testing::KilledBySignal(SIGABRT), "installPlatform: the platform is in use")
        << what;
  }
}

std::size_t bytesInUse() {
  return __sanitizer_get_current_allocated_bytes ? __sanitizer_get_current_allocated_bytes()
                                                 : mallinfo2().uordblks;
}

TEST(BySelector, NothingLeaks) {
  // In the order of the requests below. The last result is that of the report.
  useCanned({success(R"({"code":0,"data":[1,2,3]})"), success(R"({"code":3,"msg":"refused"})"), lost,
             success(R"({"code":0,"msg":"welcome"})"), success("{}")});
  std::size_t before = 0;
  constexpr int warmUp = 100;
  constexpr int rounds = 2500;
  for (int i = 0; i < warmUp + rounds; ++i) {
    if (i == warmUp) before = bytesInUse();
    @autoreleasepool {
      NSString* const text = [NSString stringWithFormat:@"a text of its own, with the number %d", i];
      const id manager = [[[classNamed("OrvaneManager") alloc] init] autorelease];
      send(manager, "setClientId:", text);
      EXPECT_EQ(perform(manager, pictureCall, text).answer, "\1\2\3");
      EXPECT_EQ(perform(manager, codeCall, text, text).error, "refused 3 0");
      EXPECT_EQ(perform(manager, codeCall, text, text).error, "NSURLErrorDomain -1005 3");
      EXPECT_EQ(perform(manager, loginCall, text, text).answer, "welcome");
    }
  }
  EXPECT_LT(bytesInUse(), before + rounds * sizeof(void*));
}

}  // namespace
