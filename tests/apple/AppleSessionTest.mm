// What AppleSession makes of the data and the redirects that an NSURLSession hands over.

#import <Foundation/Foundation.h>
#include <gtest/gtest.h>

#import "orvane/apple/AppleSession.h"
#import "orvane/apple/platformError.h"
#include "tests/apple/CannedSession.h"
#include "tests/apple/standins/standins.h"
#include "tests/support/FakeSession.h"

/// Calls each handler with `data` and a response before the task is resumed.
@interface DataSession : NSURLSession {
 @public
  NSData* data;
}
@end

@implementation DataSession
- (NSURLSessionDataTask*)dataTaskWithRequest:(NSURLRequest*)request
                           completionHandler:(void (^)(NSData*, NSURLResponse*, NSError*))handler {
  handler(data, [[[NSHTTPURLResponse alloc] init] autorelease], nil);
  return nil;
}
@end

/// Follows no redirect.
@interface StayingDelegate : NSObject <NSURLSessionTaskDelegate>
@end

@implementation StayingDelegate
- (void)URLSession:(NSURLSession*)session
                          task:(NSURLSessionTask*)task
    willPerformHTTPRedirection:(NSHTTPURLResponse*)response
                    newRequest:(NSURLRequest*)request
             completionHandler:(void (^)(NSURLRequest*))completionHandler {
  completionHandler(nil);
}
@end

namespace orvane {
namespace {

DataTaskResult resultOf(NSData* data) {
  DataSession* const session = [[[DataSession alloc] init] autorelease];
  session->data = data;
  DataTaskResult result;
  AppleSession(session).startDataTask(URLRequest(""), [&](const auto& given) { result = given; });
  return result;
}

TEST(AppleSession, ReadsABodyOfAnySizeInPlace) {
  @autoreleasepool {
    for (const NSUInteger size : {1U, (64U << 20) + 1}) {
      SCOPED_TRACE(size);
      // Takes no memory, because its pages are not touched.
      NSData* const data = [[NSData alloc] initWithBytesNoCopy:calloc(size, 1) length:size freeWhenDone:YES];
      DataTaskResult result = resultOf(data);
      ASSERT_TRUE(result.body && result.response && !result.error);
      EXPECT_EQ(result.body->data(), [data bytes]);
      EXPECT_EQ(result.body->size(), size);
      EXPECT_EQ([data retainCount], 2U);
      result.body.reset();
      EXPECT_EQ([data retainCount], 1U);
      [data release];
    }
    NSMutableData* const changing = [NSMutableData dataWithBytes:"{}" length:2];
    const DataTaskResult result = resultOf(changing);
    [changing resetBytesInRange:NSMakeRange(0, 2)];
    EXPECT_EQ(std::string(result.body->begin(), result.body->end()), "{}");
  }
}

TEST(AppleSession, DoesNotReturnFromHTTPSToHTTP) {
  standins::Redirects& redirects = standins::redirects();
  redirects.locations = {{"https://s/down", "http://s/1"},
                         {"http://s/up", "https://s/down"},
                         {"http://s/over", "http://s/2"},
                         {"https://s/over", "https://s/2"}};
  struct Row {
    const char* url;
    bool tasksHaveDelegates;
    bool sessionDecides;
    std::string_view outcome;  // A status, or the URL of an error.
    std::string_view visited;
  };
  const Row rows[] = {
      {"https://s/down", true, false, "http://s/1", "https://s/down "},
      {"http://s/up", true, false, "http://s/1", "http://s/up https://s/down "},
      {"http://s/over", true, false, "200", "http://s/over http://s/2 "},
      {"https://s/over", true, false, "200", "https://s/over https://s/2 "},
      {"https://s/over", true, true, "307", "https://s/over "},
      {"https://s/down", true, true, "http://s/1", "https://s/down "},
      // Where tasks have no delegates, the reply over plain HTTP is the first sign.
      {"https://s/down", false, false, "http://s/1", "https://s/down http://s/1 "},
      {"http://s/up", false, false, "200", "http://s/up https://s/down http://s/1 "},
      {"https://s/over", false, false, "200", "https://s/over https://s/2 "},
      {"https://s/down", false, true, "307", "https://s/down "},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(&row - rows);
    redirects.tasksHaveDelegates = row.tasksHaveDelegates;
    @autoreleasepool {
      const auto canned = std::make_shared<test::CannedSession>(std::vector{test::replied("{}")});
      NSURLSession* const session = standins::sessionOver(canned);
      if (row.sessionDecides) session->delegate = [[[StayingDelegate alloc] init] autorelease];
      DataTaskResult result;
      AppleSession(session).startDataTask(URLRequest(row.url), [&](const auto& given) { result = given; });
      EXPECT_EQ(canned->visited, row.visited);
      ASSERT_NE(!result.error, !result.response);
      if (result.response) {
        EXPECT_EQ(std::to_string(result.response->statusCode), row.outcome);
        continue;
      }
      EXPECT_EQ(errorDescription(*result.error), "NSURLErrorDomain (-1002)");
      EXPECT_EQ(*result.error->userInfo.at("NSErrorFailingURLStringKey").string(), row.outcome);
      EXPECT_TRUE([[platformError(result.error) localizedDescription] isEqual:@"unsupported URL"]);
    }
  }
  redirects = {};
}

}  // namespace
}  // namespace orvane
