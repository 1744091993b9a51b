#import <Block.h>
#import <Foundation/Foundation.h>
#include <atomic>

#include "orvane/platform/URLSession.h"
#include "tests/apple/standins/standins.h"

namespace {

using Handler = void (^)(NSData* body, NSURLResponse* response, NSError* error);

std::atomic<const void*> latest = nullptr;

NSString* text(const std::string& utf8) {
  return [NSString stringWithUTF8String:utf8.c_str()];
}

orvane::URLRequest portable(NSURLRequest* request) {
  orvane::URLRequest made([[[request URL] absoluteString] UTF8String]);
  made.setMethod([[request HTTPMethod] UTF8String]);
  if (NSData* const body = [request HTTPBody]) {
    const auto* const bytes = static_cast<const std::uint8_t*>([body bytes]);
    made.setBody(orvane::Bytes(bytes, bytes + [body length]));
  }
  NSDictionary* const fields = [request allHTTPHeaderFields];
  for (NSString* name in fields) made.addValue([[fields objectForKey:name] UTF8String], [name UTF8String]);
  return made;
}

NSError* errorOf(const orvane::Error& error) {
  NSMutableDictionary* const userInfo = [NSMutableDictionary dictionary];
  for (const auto& [key, value] : error.userInfo) [userInfo setObject:text(*value.text()) forKey:text(key)];
  [userInfo setObject:[NSURL URLWithString:@"http://h/"] forKey:@"URL"];
  [userInfo setObject:@"an entry of no meaning" forKey:@1];
  NSError* const made = [NSError errorWithDomain:text(error.domain)
                                            code:static_cast<NSInteger>(error.code)
                                        userInfo:userInfo];
  latest = made;
  return made;
}

}  // namespace

/// The queue of a session whose tasks another session, the inner one, carries out.
@interface DelegateQueue : NSOperationQueue {
 @public
  std::shared_ptr<orvane::URLSession> inner;
}
@end

@implementation DelegateQueue
/// GNUstep calls this when the queue is destroyed, too.
- (void)cancelAllOperations {
  if (inner) inner->cancelAllOperations();
}
@end

@implementation NSURLSessionDataTask
- (void)resume {
  start();
}
- (void)dealloc {
  Block_release(start);
  [super dealloc];
}
@end

@implementation NSURLSession

+ (NSURLSession*)sharedSession {
  static NSURLSession* const shared = [[NSURLSession alloc] init];
  return shared;
}

- (instancetype)init {
  if ((self = [super init])) queue = [[DelegateQueue alloc] init];
  return self;
}

- (void)dealloc {
  queue->inner.reset();
  [queue release];
  [super dealloc];
}

- (NSOperationQueue*)delegateQueue {
  return queue;
}

- (NSURLSessionDataTask*)dataTaskWithRequest:(NSURLRequest*)request completionHandler:(Handler)handler {
  const std::shared_ptr<void> block((void*)Block_copy(handler), [](void* copied) { Block_release(copied); });
  const auto finish = [block](const orvane::DataTaskResult& result) {
    @autoreleasepool {
      // Like NSURLSession after a body that was cut, hands over an error with the part before it.
      NSData* body = result.error ? [NSData dataWithBytes:"{}" length:2] : nil;
      if (result.body && !result.body->empty())
        body = [NSData dataWithBytes:result.body->data() length:result.body->size()];
      NSURLResponse* response = nil;
      if (result.response || result.error)
        response = [[[NSHTTPURLResponse alloc] initWithURL:nil
                                                statusCode:result.response ? result.response->statusCode : 200
                                               HTTPVersion:@"HTTP/1.1"
                                              headerFields:nil] autorelease];
      ((Handler)block.get())(body, response, result.error ? errorOf(*result.error) : nil);
    }
  };
  NSURLSessionDataTask* const task = [[[NSURLSessionDataTask alloc] init] autorelease];
  const std::shared_ptr<orvane::URLSession> inner = queue->inner;
  const orvane::URLRequest carried = portable(request);
  task->start = Block_copy(^{
    inner->startDataTask(carried, finish);
  });
  return task;
}

@end

namespace standins {

void setInnerSession(std::shared_ptr<orvane::URLSession> inner) {
  [NSURLSession sharedSession]->queue -> inner = std::move(inner);
}

NSURLSession* sessionOver(std::shared_ptr<orvane::URLSession> inner) {
  NSURLSession* const session = [[[NSURLSession alloc] init] autorelease];
  session->queue->inner = std::move(inner);
  return session;
}

const void* latestError() {
  return latest;
}

}  // namespace standins
