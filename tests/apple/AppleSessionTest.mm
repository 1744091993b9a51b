// What AppleSession makes of the data that an NSURLSession hands over.

#import <Foundation/Foundation.h>
#include <gtest/gtest.h>

#import "orvane/apple/AppleSession.h"

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

}  // namespace
}  // namespace orvane
