// The calls of a sign-in, by selector alone.

#import <Orvane/Orvane.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <sanitizer/allocator_interface.h>

#import "orvane/apple/AppleSession.h"
#include "orvane/host/HostSession.h"
#include "orvane/orvane.h"
#include "tests/apple/send.h"
#include "tests/apple/standins/standins.h"
#include "tests/support/AdapterUnderTest.h"
#include "tests/support/LoopbackServer.h"
#include "tools/devservice/IdentityService.h"
#include "tools/devservice/Server.h"

// Without a sanitizer there is none of it.
extern "C" __attribute__((weak)) size_t __sanitizer_get_current_allocated_bytes();

@interface StubbornManager : OrvaneManager
@end

@implementation StubbornManager
- (NSString*)clientId {
  return @"stubborn";
}
@end

namespace {

using orvane::DataTaskResult;
using orvane::test::classNamed;
using orvane::test::finish;
using orvane::test::LoopbackServer;
using orvane::test::reply;
using orvane::test::send;
using Answer = LoopbackServer::Answer;
using Over = void (^)();

/// Answers each task at once, in turn.
class CannedSession final : public orvane::URLSession {
 public:
  explicit CannedSession(std::vector<DataTaskResult> results) : results_(std::move(results)) {}

  void startDataTask(orvane::URLRequest, orvane::DataTaskHandler handler) override {
    handler(results_[next_++ % results_.size()]);
  }
  void cancelAllOperations() override {}

 private:
  std::vector<DataTaskResult> results_;
  std::size_t next_ = 0;
};

void useCanned(std::vector<DataTaskResult> results) {
  standins::setSharedTransport(std::make_shared<CannedSession>(std::move(results)));
}

DataTaskResult success(std::string_view body) {
  return {orvane::Bytes(body.begin(), body.end()), orvane::HTTPResponse{200}, nullptr};
}

const DataTaskResult lost = {
    std::nullopt, std::nullopt,
    std::make_shared<const orvane::Error>(orvane::Error{"NSURLErrorDomain", -1005, {{"reason", "lost"}}})};

/// Outcome and place of one requestCode, and the error that came.
struct CodeOutcome {
  std::string text;
  bool onMainQueue;
  const void* error;
};
CodeOutcome requestCode(NSString* mobile) {
  __block std::string text;
  __block const void* pointer = nullptr;
  const bool onMainQueue = finish(^(Over over) {
    send(send<id>(classNamed("OrvaneManager"), "shareManager"), "requestCode:codeNumber:finished:", mobile,
         @"", ^(NSError* error) {
           pointer = error;
           text = error ? std::string([[error domain] UTF8String]) + " " + std::to_string([error code]) +
                              " " + std::to_string([[error userInfo] count])
                        : "none";
           over();
         });
  });
  return {text, onMainQueue, pointer};
}

/// Signs in by selector, with what the service knows of the number.
void signIn(id manager, NSString* mobile, devservice::IdentityService& identities) {
  const auto known = [&] { return identities.inspect([mobile UTF8String]).value(); };
  const auto text = [](const std::string& utf8) { return [NSString stringWithUTF8String:utf8.c_str()]; };

  __block std::string picture;
  EXPECT_TRUE(finish(^(Over over) {
    const auto finished = ^(NSData* data, NSError* error) {
      if (!error) picture.assign(static_cast<const char*>([data bytes]), [data length]);
      over();
    };
    [manager performSelector:sel_registerName("requestPictureCode:finished:")
                  withObject:mobile
                  withObject:(id)finished];
  }));
  ASSERT_TRUE(picture.starts_with("\x89PNG")) << picture.substr(0, 80);

  EXPECT_TRUE(finish(^(Over over) {
    send(manager, "requestCode:codeNumber:finished:", mobile, text(*known().picture), ^(NSError* error) {
      EXPECT_EQ(error, nil);
      over();
    });
  }));

  EXPECT_TRUE(finish(^(Over over) {
    send(manager, "requestLogin:code:finished:", mobile, text(*known().code),
         ^(NSString* message, NSError* error) {
           EXPECT_TRUE([message isEqual:@"welcome"]);
           EXPECT_EQ(error, nil);
           over();
         });
  }));
  while (!known().facts) std::this_thread::yield();
  EXPECT_EQ(known().facts->at("carrier"), "Carrier");
}

TEST(BySelector, AWholeSignInOfEachManager) {
  devservice::IdentityService identities;
  const devservice::Server server(identities);
  orvane::test::installAdapter(server.port());
  @autoreleasepool {
    const id shared = send<id>(classNamed("OrvaneManager"), "shareManager");
    const id own = [[[classNamed("Orvane.OrvaneManager") alloc] init] autorelease];
    const id stubborn = [[[StubbornManager alloc] init] autorelease];
    send(shared, "setClientId:", @"one");
    send(own, "setAppClientId:", @"two");
    struct Row {
      id manager;
      const char* identifier;
      NSString* mobile;
    };
    for (const Row& row : {Row{shared, "one", @"+447700900001"}, Row{own, "two", @"+447700900002"},
                           Row{stubborn, "stubborn", @"+447700900003"}}) {
      signIn(row.manager, row.mobile, identities);
      EXPECT_EQ(identities.inspect([row.mobile UTF8String])->clientId, row.identifier);
    }
    [shared setClientId:nil];
  }
}

TEST(BySelector, OutcomesComeAsTheyAreAndWhereTheyShould) {
  LoopbackServer server;
  orvane::test::installAdapter(server.port());
  const auto answerWith = [&](const Answer& answer) {
    server.setScript([answer](const auto&) { return answer; });
  };
  const std::tuple<Answer, std::string, bool> rows[] = {
      {{reply(R"({"code":0})")}, "none", true},
      {{reply(R"({"code":7,"msg":"Bu\ud83d\ude00sy"})")}, "Bu😀sy 7 0", true},
      {{reply(R"({"code":-2147483648,"msg":""})")}, " -2147483648 0", true},
      {{reply("")}, "com.brovent.error -1 1", false},
      {{"", LoopbackServer::Then::close}, "NSURLErrorDomain -1005 5", false},
  };
  for (const auto& [answer, text, onMainQueue] : rows) {
    answerWith(answer);
    const CodeOutcome outcome = requestCode(@"1");
    EXPECT_EQ(outcome.text, text);
    EXPECT_EQ(outcome.onMainQueue, onMainQueue);
    if (text.starts_with("NSURL")) EXPECT_EQ(outcome.error, standins::latestError());
  }

  answerWith({reply(R"({"code":0,"data":[]})")});
  finish(^(Over over) {
    [[OrvaneManager shareManager] requestPictureCode:@"1"
                                            finished:^(NSData* data, NSError* error) {
                                              EXPECT_TRUE(data && [data length] == 0 && !error);
                                              over();
                                            }];
  });
  answerWith({reply(R"({"code":9,"msg":"a\u0000b"})")});
  finish(^(Over over) {
    [[OrvaneManager shareManager] requestLogin:@"1"
                                          code:@"2"
                                      finished:^(NSString* message, NSError* error) {
                                        EXPECT_TRUE([message isEqual:@"a\0b"]);
                                        EXPECT_TRUE([[error domain] isEqual:message]);
                                        EXPECT_EQ([error code], 1);
                                        over();
                                      }];
  });
}

TEST(BySelector, NilIsAnEmptyTextAndNobodyToTell) {
  useCanned({success(R"({"code":3,"msg":""})")});
  const id manager = [OrvaneManager shareManager];
  NSString* const none = nil;
  send(manager, "requestPictureCode:finished:", none, none);
  send(manager, "requestCode:codeNumber:finished:", none, none, none);
  send(manager, "requestLogin:code:finished:", none, none, none);
  // Behind them on the main queue.
  EXPECT_EQ(requestCode(@"").text, " 3 0");

  LoopbackServer server;
  orvane::test::installAdapter(server.port());
  server.setScript([](const auto&) { return Answer{reply(R"({"code":0})")}; });
  [[OrvaneManager shareManager] setClientId:[[[BrokenText alloc] init] autorelease]];
  EXPECT_EQ(requestCode(none).text, "none");
  EXPECT_EQ(server.requests().at(0).body, R"({"captcha":"","mobile":""})");
  EXPECT_TRUE(server.requests().at(0).hasLine("XRAPI-CLIENT-ID: \uFFFD😀\uFFFDa"));
  [[OrvaneManager shareManager] setClientId:nil];
}

/// Makes one call; the process ends well if its block is called, and if nothing stops it.
void callOnce(const std::string& call, const DataTaskResult& result) {
  @autoreleasepool {
    useCanned({result});
    OrvaneManager* const manager = [OrvaneManager shareManager];
    if (call == "getMEIDCode") [OVDeviceInfoTool getMEIDCode];
    NSURLSession* none = nil;
    if (call == "session") const orvane::AppleSession session(none);
    if (call == "picture")
      [manager requestPictureCode:@"1"
                         finished:^(id, id) {
                           _exit(0);
                         }];
    if (call == "code")
      [manager requestCode:@"1"
                codeNumber:@"2"
                  finished:^(id) {
                    _exit(0);
                  }];
    if (call == "login")
      [manager requestLogin:@"1"
                       code:@"2"
                   finished:^(id, id) {
                     _exit(0);
                   }];
    if (call == "surrogate")
      [manager requestCode:[[[BrokenText alloc] init] autorelease]
                codeNumber:@""
                  finished:^(id) {
                    _exit(0);
                  }];
    if (call != "getMEIDCode" && call != "session") orvane::hostMainQueue().run();
  }
  _exit(0);
}

TEST(BySelectorDeathTest, FatalCasesEndTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const std::tuple<const char*, DataTaskResult, const char*> rows[] = {
      {"picture", success(R"({"code":0,"data":[256]})"), "requestPictureCode"},
      {"picture", success("[]"), "requestPictureCode"},
      {"code", success(R"({"code":"0"})"), "requestCode"},
      {"code", success(R"({"code":5})"), "requestCode"},
      {"code", DataTaskResult(), "requestJSON"},
      {"login", success(R"({"code":0})"), "requestLogin"},
      {"login", lost, "requestLogin: there is no reply"},
      {"surrogate", success(R"({"code":0})"), "cannot be represented"},
      {"getMEIDCode", success(""), "no vendor identifier"},
      {"session", success(""), "there is no NSURLSession"},
  };
  for (const auto& [call, result, complaint] : rows)
    EXPECT_EXIT(callOnce(call, result), testing::KilledBySignal(SIGABRT), complaint) << call;
}

/// A debug build in a simulator: the development service is the proxy of the application's session.
void signInThroughAProxy() {
  @autoreleasepool {
    devservice::IdentityService identities;
    const devservice::Server server(identities);
    NSURLSessionConfiguration* const configuration =
        [NSURLSessionConfiguration ephemeralSessionConfiguration];
    [configuration setConnectionProxyDictionary:@{
      @"HTTPEnable" : @1,
      @"HTTPProxy" : @"127.0.0.1",
      @"HTTPPort" : @(static_cast<int>(server.port()))
    }];
    [OVSession useSession:[NSURLSession sessionWithConfiguration:configuration]
           failureMessage:@"No connection."];
    signIn([OrvaneManager shareManager], @"+447700900004", identities);
    _exit(testing::Test::HasFailure() ? 1 : 0);
  }
}

/// Status 200 and a page of HTML in front of a login. The process ends well if that is refused as promised.
void logInBehindAPortal(bool encrypted) {
  @autoreleasepool {
    __block std::string url;
    struct Portal final : orvane::URLSession {
      explicit Portal(std::string& asked) : url(asked) {}
      void startDataTask(orvane::URLRequest request, orvane::DataTaskHandler handler) override {
        url = request.url();
        std::thread([handler = std::move(handler)] {
          handler(success("<html>Sign in to this network</html>"));
        }).detach();
      }
      void cancelAllOperations() override {}
      std::string& url;
    };
    standins::setSharedTransport(std::make_shared<Portal>(url));
    send(classNamed("Orvane.OVSession"), "useSession:failureMessage:encrypted:", [NSURLSession sharedSession],
         @"No connection.", static_cast<BOOL>(encrypted));
    EXPECT_TRUE(finish(^(Over over) {
      send([OrvaneManager shareManager], "requestLogin:code:finished:", @"1", @"2",
           ^(NSString* message, NSError* error) {
             EXPECT_TRUE([message isEqual:@"No connection."]);
             EXPECT_TRUE([[error domain] isEqual:message]);
             EXPECT_EQ([error code], 1);
             over();
           });
    }));
    EXPECT_TRUE(url.starts_with(encrypted ? "https://" : "http://")) << url;
    _exit(testing::Test::HasFailure() ? 1 : 0);
  }
}

void useSessionAfter(std::string_view first) {
  const auto use = [] {
    send(classNamed("OVSession"), "useSession:failureMessage:", [NSURLSession sharedSession],
         @"No connection.");
  };
  useCanned({success("{}")});
  if (first == "choice") use();
  if (first == "call")
    [[OrvaneManager shareManager] requestCode:@"1"
                                   codeNumber:@"2"
                                     finished:^(id){
                                     }];
  if (first == "fact") [OVDeviceInfoTool getSystemName];
  use();
  _exit(0);
}

TEST(BySelectorDeathTest, ASessionIsChosenBeforeTheFirstCallAndOnce) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const testing::ExitedWithCode well(0);
  EXPECT_EXIT(signInThroughAProxy(), well, "");
  EXPECT_EXIT(logInBehindAPortal(false), well, "");
  EXPECT_EXIT(logInBehindAPortal(true), well, "");
  for (const char* first : {"choice", "call", "fact"})
    EXPECT_EXIT(useSessionAfter(first), testing::KilledBySignal(SIGABRT), "platform is in use") << first;
}

std::size_t bytesInUse() {
  return __sanitizer_get_current_allocated_bytes ? __sanitizer_get_current_allocated_bytes()
                                                 : mallinfo2().uordblks;
}

TEST(BySelector, NothingLeaks) {
  // In the order of the requests below; the last is the submission's.
  useCanned({success(R"({"code":0,"data":[1,2,3]})"), success(R"({"code":3,"msg":"refused"})"), lost,
             success(R"({"code":0,"msg":"welcome"})"), success("{}")});
  const auto callFourTimes = [](NSString* text) {
    const id manager = [[[classNamed("OrvaneManager") alloc] init] autorelease];
    send(manager, "setClientId:", text);
    for (const int call : {0, 1, 2, 3}) {
      finish(^(Over over) {
        const auto withOne = ^(NSError* error) {
          EXPECT_TRUE(error && [text length] > 0);
          over();
        };
        const auto withTwo = ^(id answer, NSError* error) {
          EXPECT_TRUE(answer && !error && [text length] > 0);
          over();
        };
        if (call == 0) send(manager, "requestPictureCode:finished:", text, withTwo);
        if (call == 1 || call == 2) send(manager, "requestCode:codeNumber:finished:", text, text, withOne);
        if (call == 3) send(manager, "requestLogin:code:finished:", text, text, withTwo);
      });
    }
  };
  std::size_t before = 0;
  constexpr int warmUp = 100;
  constexpr int rounds = 2500;
  for (int i = 0; i < warmUp + rounds; ++i) {
    if (i == warmUp) before = bytesInUse();
    @autoreleasepool {
      callFourTimes([NSString stringWithFormat:@"a text of its own, with the number %d", i]);
    }
  }
  EXPECT_LT(bytesInUse(), before + rounds * sizeof(void*));
}

}  // namespace
