// What the adapter's session makes of the data that an NSURLSession hands over.

#import <Foundation/Foundation.h>
#include <gtest/gtest.h>

#import "orvane/apple/AppleSession.h"

/// A session whose tasks succeed with `data` even before they are resumed.
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

namespace {

orvane::DataTaskResult resultFor(NSData* data) {
  DataSession* const session = [[[DataSession alloc] init] autorelease];
  session->data = data;
  orvane::DataTaskResult result;
  orvane::AppleSession(session).startDataTask(
      orvane::URLRequest("http://h/"), [&](auto&& given) { result = std::forward<decltype(given)>(given); });
  return result;
}

TEST(AppleSession, ReadsABodyWhereItIsUpToALimit) {
  @autoreleasepool {
    constexpr NSUInteger limit = 64 * 1024 * 1024;
    for (const NSUInteger size : {NSUInteger{1}, limit, limit + 1}) {
      // Takes no memory, since its pages are not touched.
      NSData* const data = [[NSData alloc] initWithBytesNoCopy:calloc(size, 1) length:size freeWhenDone:YES];
      orvane::DataTaskResult result = resultFor(data);
      if (size > limit) {
        EXPECT_TRUE(result.error && !result.body && !result.response);
        EXPECT_EQ(description(*result.error), "NSURLErrorDomain (-1103)");
      } else {
        ASSERT_TRUE(result.body && result.response && !result.error) << size;
        EXPECT_EQ(result.body->data(), [data bytes]);
        EXPECT_EQ(result.body->size(), size);
        EXPECT_EQ([data retainCount], 2U);
        result.body.reset();
      }
      EXPECT_EQ([data retainCount], 1U);
      [data release];
    }
    NSMutableData* const changing = [NSMutableData dataWithBytes:"{}" length:2];
    const orvane::DataTaskResult result = resultFor(changing);
    [changing resetBytesInRange:NSMakeRange(0, 2)];
    EXPECT_EQ(std::string(result.body->begin(), result.body->end()), "{}");
  }
}

}  // namespace
