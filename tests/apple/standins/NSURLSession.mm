#import <Block.h>
#import <Foundation/Foundation.h>
#include <algorithm>
#include <atomic>

#import "orvane/apple/AppleSession.h"
#include "orvane/host/HostSession.h"
#include "tests/apple/standins/standins.h"

namespace {

using Handler = void (^)(NSData* body, NSURLResponse* response, NSError* error);

std::atomic<const void*> latest = nullptr;

std::shared_ptr<orvane::URLSession>& sharedTransport() {
  static auto* const transport = new std::shared_ptr<orvane::URLSession>;
  return *transport;
}

NSString* text(const std::string& utf8) {
  return [NSString stringWithUTF8String:utf8.c_str()];
}

/// With the fields in the order of their names, so that the wire can be compared.
orvane::URLRequest portable(NSURLRequest* request) {
  orvane::URLRequest made([[[request URL] absoluteString] UTF8String]);
  made.setMethod([[request HTTPMethod] UTF8String]);
  if (NSData* const body = [request HTTPBody]) {
    const auto* const bytes = static_cast<const std::uint8_t*>([body bytes]);
    made.setBody(orvane::Bytes(bytes, bytes + [body length]));
  }
  NSDictionary* const fields = [request allHTTPHeaderFields];
  for (NSString* name in [[fields allKeys] sortedArrayUsingSelector:@selector(compare:)])
    made.addValue([[fields objectForKey:name] UTF8String], [name UTF8String]);
  return made;
}

NSError* platformError(const orvane::Error& error) {
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

/// The queue on which the transport calls handlers.
@interface TransportQueue : NSOperationQueue {
 @public
  std::function<std::shared_ptr<orvane::URLSession>()> transport;
}
@end

@implementation TransportQueue
- (void)cancelAllOperations {
  transport()->cancelAllOperations();
}
@end

@interface CarriedTask : NSURLSessionDataTask {
 @public
  std::function<void()> start;
}
@end

@implementation CarriedTask
- (void)resume {
  start();
}
@end

/// A session whose tasks another one carries out: `own`, or for want of it the shared one.
@interface CarriedSession : NSURLSession {
 @public
  std::shared_ptr<orvane::URLSession> own;
  TransportQueue* queue;
}
@end

@implementation CarriedSession

- (instancetype)init {
  if ((self = [super init])) {
    queue = [[TransportQueue alloc] init];
    queue->transport = [self] { return own ? own : sharedTransport(); };
  }
  return self;
}

- (void)dealloc {
  [queue release];
  [super dealloc];
}

- (NSOperationQueue*)delegateQueue {
  return queue;
}

- (NSURLSessionDataTask*)dataTaskWithRequest:(NSURLRequest*)request completionHandler:(Handler)handler {
  const std::shared_ptr<void> block((void*)Block_copy(handler), [](void* copied) { Block_release(copied); });
  CarriedTask* const task = [[[CarriedTask alloc] init] autorelease];
  const auto finish = [block](const orvane::DataTaskResult& result) {
    @autoreleasepool {
      // As where a body was cut, an error comes with what there was before it.
      NSData* body = result.error ? [NSData dataWithBytes:"{}" length:2] : nil;
      if (result.body && !result.body->empty())
        body = [NSData dataWithBytes:result.body->data() length:result.body->size()];
      NSURLResponse* response = nil;
      if (result.response || result.error)
        response = [[[NSHTTPURLResponse alloc] initWithURL:nil
                                                statusCode:result.response ? result.response->statusCode : 200
                                               HTTPVersion:@"HTTP/1.1"
                                              headerFields:nil] autorelease];
      ((Handler)block.get())(body, response, result.error ? platformError(*result.error) : nil);
    }
  };
  task->start = [transport = queue->transport(), request = portable(request), finish] {
    transport->startDataTask(request, finish);
  };
  return task;
}

@end

@implementation NSURLSessionDataTask
- (void)resume {
}
@end

@implementation NSURLSessionConfiguration
@synthesize connectionProxyDictionary;
+ (NSURLSessionConfiguration*)ephemeralSessionConfiguration {
  return [[[self alloc] init] autorelease];
}
- (void)dealloc {
  [connectionProxyDictionary release];
  [super dealloc];
}
@end

@implementation NSURLSession

+ (NSURLSession*)sharedSession {
  static CarriedSession* const shared = [[CarriedSession alloc] init];
  return shared;
}

+ (NSURLSession*)sessionWithConfiguration:(NSURLSessionConfiguration*)configuration {
  NSDictionary* const proxy = [configuration connectionProxyDictionary];
  orvane::HostSessionConfiguration own;
  if ([[proxy objectForKey:@"HTTPEnable"] boolValue])
    own.proxy = [[NSString stringWithFormat:@"http://%@:%@", [proxy objectForKey:@"HTTPProxy"],
                                            [proxy objectForKey:@"HTTPPort"]] UTF8String];
  CarriedSession* const session = [[[CarriedSession alloc] init] autorelease];
  session->own = std::make_shared<orvane::HostSession>(own);
  return session;
}

- (NSOperationQueue*)delegateQueue {
  return nil;
}

- (NSURLSessionDataTask*)dataTaskWithRequest:(NSURLRequest*)request completionHandler:(Handler)handler {
  return nil;
}

@end

namespace standins {

void setSharedTransport(std::shared_ptr<orvane::URLSession> transport) {
  sharedTransport() = std::move(transport);
}

std::shared_ptr<orvane::URLSession> makeSession(std::shared_ptr<orvane::URLSession> transport) {
  @autoreleasepool {
    CarriedSession* const session = [[[CarriedSession alloc] init] autorelease];
    session->own = std::move(transport);
    return std::make_shared<orvane::AppleSession>(session);
  }
}

const void* latestError() {
  return latest;
}

}  // namespace standins
