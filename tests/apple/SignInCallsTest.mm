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
#include "tests/apple/standins/standins.h"
#include "tests/support/FakeSession.h"
#include "tests/support/LoopbackServer.h"
#include "tools/devservice/IdentityService.h"
#include "tools/devservice/Server.h"

// Null in a build without a sanitizer.
extern "C" __attribute__((weak)) size_t __sanitizer_get_current_allocated_bytes();

namespace {

using orvane::DataTaskResult;
using orvane::test::LoopbackServer;
using orvane::test::replied;
using orvane::test::reply;
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

/// What a block received, and where. `error` is domain, code, and number of entries in the user information.
struct Outcome {
  std::string answer;
  std::string error;
  bool isOnMainQueue = false;
  const void* errorObject = nullptr;
};

/// Makes a call and runs the main queue until its block has been called.
Outcome perform(OrvaneManager* manager, Call call, NSString* mobile, NSString* read = nil) {
  __block Outcome outcome;
  const std::thread::id here = std::this_thread::get_id();
  const auto finished = ^(id answer, NSError* error) {
    outcome = {bytesOf(answer), "none", std::this_thread::get_id() == here, error};
    if (error)
      outcome.error = bytesOf([error domain]) + " " + std::to_string([error code]) + " " +
                      std::to_string([[error userInfo] count]);
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

/// Signs in, and reads the picture's text and the code from the service.
void signIn(OrvaneManager* manager, NSString* mobile, devservice::IdentityService& identities) {
  const auto known = [&] { return identities.inspect([mobile UTF8String]).value(); };
  const auto text = [](const std::string& utf8) { return [NSString stringWithUTF8String:utf8.c_str()]; };
  const Outcome picture = perform(manager, Call::picture, mobile);
  ASSERT_TRUE(picture.answer.starts_with("\x89PNG")) << picture.answer.substr(0, 80);
  EXPECT_EQ(perform(manager, Call::code, mobile, text(*known().picture)).error, "none");
  const Outcome login = perform(manager, Call::login, mobile, text(*known().code));
  EXPECT_EQ(login.answer, "welcome");
  EXPECT_EQ(login.error, "none");
  while (!known().facts) std::this_thread::yield();
  EXPECT_EQ(known().facts->at("carrier"), "Carrier");
}

TEST(SignInCalls, AWholeSignInOfEachManager) {
  devservice::IdentityService identities;
  const devservice::Server server(identities);
  standins::setInnerSession(sessionTo(server.port()));
  @autoreleasepool {
    OrvaneManager* const shared = [OrvaneManager shareManager];
    OrvaneManager* const own = [[[OrvaneManager alloc] init] autorelease];
    [shared setClientId:@"one"];
    [own setAppClientId:@"two"];
    signIn(shared, @"+447700900001", identities);
    signIn(own, @"+447700900002", identities);
    EXPECT_EQ(identities.inspect("+447700900001")->clientId, "one");
    EXPECT_EQ(identities.inspect("+447700900002")->clientId, "two");
    [shared setClientId:nil];
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
  const Row rows[] = {
      {"accepted", Call::code, R"({"code":0})", "nil", "none", true},
      {"an empty picture", Call::picture, R"({"code":0,"data":[]})", "", "none", true},
      {"refused", Call::code, R"({"code":-7,"msg":"Bu\ud83d\ude00sy"})", "nil", "Bu😀sy -7 0", true},
      {"a refused login", Call::login, R"({"code":9,"msg":"a\u0000"})", {"a\0", 2}, {"a\0 1 0", 6}, true},
      {"not JSON", Call::code, "", "nil", "com.brovent.error -1 1", false},
      {"no reply", Call::code, nullptr, "nil", "NSURLErrorDomain -1005 5", false},
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
    if (row.error.starts_with("NSURL")) EXPECT_EQ(outcome.errorObject, standins::latestError());
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
  EXPECT_EQ(perform(manager, Call::code, @"").error, " 3 0");

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
      {[] { [OVDeviceInfoTool getMEIDCode]; }, "no vendor identifier"},
      {[] {
         NSURLSession* none = nil;
         const orvane::AppleSession session(none);
       },
       "there is no NSURLSession"},
      {[] { [OVDeviceInfoTool getSystemName], useSession(nil); }, "OVSession: the library is in use"},
      {[] { useSession(@"ftp://own.example"); }, "ReaddressedSession: the address does not begin"},
  };
  for (const Row& row : rows)
    EXPECT_EXIT(leaveAfter(row.act), testing::KilledBySignal(SIGABRT), row.complaint)
        << "row " << &row - rows;
}

void signInByAnotherSession() {
  devservice::IdentityService identities;
  const devservice::Server server(identities);
  useSession(@"http://not.used.example");
  [OVSession useSession:standins::sessionOver(sessionTo(server.port())) address:nil failureWords:nil];
  signIn([OrvaneManager shareManager], @"+447700900004", identities);
  _exit(testing::Test::HasFailure() ? 1 : 0);
}

/// Logs in, and receives `result`.
void logIn(NSString* address, const DataTaskResult& result, const char* domain, OVErrorKind kind) {
  useCanned({result});
  useSession(address);
  __block OVErrorKind told = OVErrorKindOther;
  __block std::string message;
  const std::string words = std::string("No login: ") + domain;
  [[OrvaneManager shareManager] requestLogin:@"1"
                                        code:@"2"
                                    finished:^(NSString* text, NSError* error) {
                                      told = OVKindOfError(error);
                                      message = bytesOf(OVMessageOfError(error));
                                      EXPECT_EQ(bytesOf(text), message);
                                      EXPECT_EQ(bytesOf([error localizedDescription]), message);
                                      orvane::hostMainQueue().stop();
                                    }];
  orvane::hostMainQueue().run();
  EXPECT_EQ(told, kind);
  EXPECT_EQ(message, words);
  const Outcome outcome = perform([OrvaneManager shareManager], Call::login, @"1", @"2");
  EXPECT_EQ(outcome.answer, words);
  EXPECT_EQ(outcome.error, words + " 1 2");
  EXPECT_TRUE(outcome.isOnMainQueue);
  EXPECT_TRUE(CannedSession::lastURL.starts_with(address ? "https://own.example/v1/tenant" : "http://"))
      << CannedSession::lastURL;
  _exit(testing::Test::HasFailure() ? 1 : 0);
}

void logInBehindAPortal() {
  logIn(nil, replied("<html>Sign in to this network</html>"), "com.brovent.error", OVErrorKindNotReadable);
}

void logInWithoutANetwork() {
  const DataTaskResult lost =
      orvane::test::failed({"NSURLErrorDomain", -1009, {{"NSLocalizedDescription", "offline"}}});
  logIn(@"https://own.example/v1/", lost, "NSURLErrorDomain", OVErrorKindNoConnection);
}

TEST(SignInCallsDeathTest, GoThroughTheSessionThatIsChosen) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const testing::ExitedWithCode well(0);
  EXPECT_EXIT(signInByAnotherSession(), well, "");
  EXPECT_EXIT(logInBehindAPortal(), well, "");
  EXPECT_EXIT(logInWithoutANetwork(), well, "");
}

TEST(SignInCalls, TellTheKindOfAnErrorAndASentence) {
  @autoreleasepool {
    NSError* const refusal = [NSError errorWithDomain:@"Busy" code:7 userInfo:nil];
    EXPECT_EQ(OVKindOfError(refusal), OVErrorKindRefused);
    EXPECT_EQ(bytesOf(OVMessageOfError(refusal)), "Busy");
    // Apple's key. GNUstep's constant has another text.
    NSError* const late = [NSError errorWithDomain:@"NSURLErrorDomain"
                                              code:-1001
                                          userInfo:@{@"NSLocalizedDescription" : @"Too late."}];
    EXPECT_EQ(OVKindOfError(late), OVErrorKindTimedOut);
    EXPECT_EQ(bytesOf(OVMessageOfError(late)), "Too late.");
  }
}

std::size_t bytesInUse() {
  return __sanitizer_get_current_allocated_bytes ? __sanitizer_get_current_allocated_bytes()
                                                 : mallinfo2().uordblks;
}

TEST(SignInCalls, NothingLeaks) {
  // In the order of the requests below. The last result is that of the report.
  useCanned({replied(R"({"code":0,"data":[1,2,3]})"), replied(R"({"code":3,"msg":"refused"})"),
             orvane::test::failed({"NSURLErrorDomain", -1005, {{"reason", "lost"}}}),
             replied(R"({"code":0,"msg":"welcome"})"), replied("{}")});
  std::size_t before = 0;
  constexpr int warmUp = 100;
  constexpr int rounds = 2500;
  for (int i = 0; i < warmUp + rounds; ++i) {
    if (i == warmUp) before = bytesInUse();
    @autoreleasepool {
      NSString* const text = [NSString stringWithFormat:@"a text of its own, with the number %d", i];
      OrvaneManager* const manager = [[[OrvaneManager alloc] init] autorelease];
      [manager setClientId:text];
      EXPECT_EQ(perform(manager, Call::picture, text).answer, "\1\2\3");
      EXPECT_EQ(perform(manager, Call::code, text, text).error, "refused 3 0");
      EXPECT_EQ(perform(manager, Call::code, text, text).error, "NSURLErrorDomain -1005 3");
      EXPECT_EQ(perform(manager, Call::login, text, text).answer, "welcome");
    }
  }
  EXPECT_LT(bytesInUse(), before + rounds * sizeof(void*));
}

}  // namespace
