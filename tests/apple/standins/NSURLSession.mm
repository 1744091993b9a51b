#import <Block.h>
#import <Foundation/Foundation.h>
#import <objc/runtime.h>

#import "adapters/apple/retained.h"
#include "orvane/platform/URLSession.h"
#include "tests/apple/standins/standins.h"

namespace {

using Handler = void (^)(NSData* body, NSURLResponse* response, NSError* error);

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
  for (const auto& [key, value] : error.userInfo) [userInfo setObject:text(*value.string()) forKey:text(key)];
  [userInfo setObject:[NSURL URLWithString:@"http://h/"] forKey:@"URL"];
  [userInfo setObject:@"an entry of no meaning" forKey:@1];
  return [NSError errorWithDomain:text(error.domain)
                             code:static_cast<NSInteger>(error.code)
                         userInfo:userInfo];
}

NSHTTPURLResponse* responseTo(NSURLRequest* request, int statusCode) {
  return [[[NSHTTPURLResponse alloc] initWithURL:[request URL]
                                      statusCode:statusCode
                                     HTTPVersion:@"HTTP/1.1"
                                    headerFields:nil] autorelease];
}

}  // namespace

standins::Redirects& standins::redirects() {
  static auto* const redirects = new Redirects;
  return *redirects;
}

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

@implementation NSURLSessionTask

- (BOOL)respondsToSelector:(SEL)selector {
  if (sel_isEqual(selector, @selector(setDelegate:)) && !standins::redirects().tasksHaveDelegates) return NO;
  return [super respondsToSelector:selector];
}

- (void)setDelegate:(id<NSURLSessionTaskDelegate>)taskDelegate {
  delegate = [taskDelegate retain];
}

- (void)resume {
  [self carryOut:original];
}

- (void)carryOut:(NSURLRequest*)request {
  const auto self_ = orvane::retained(self);
  const auto sent = orvane::retained(request);
  session->queue->inner->startDataTask(portable(request), [self_, sent](const auto& result) {
    @autoreleasepool {
      [(NSURLSessionTask*)self_.get() take:result of:(NSURLRequest*)sent.get()];
    }
  });
}

- (void)take:(orvane::DataTaskResult)result of:(NSURLRequest*)request {
  const auto& locations = standins::redirects().locations;
  const auto location = locations.find([[[request URL] absoluteString] UTF8String]);
  if (location == locations.end()) {
    [self finish:result of:request];
    return;
  }
  result.response = orvane::HTTPResponse{307};
  NSMutableURLRequest* const next = [[request mutableCopy] autorelease];
  [next setURL:[NSURL URLWithString:text(location->second)]];
  const auto decide = ^(NSURLRequest* continued) {
    if (continued)
      [self carryOut:continued];
    else
      [self finish:result of:request];
  };
  const SEL asked = @selector(URLSession:task:willPerformHTTPRedirection:newRequest:completionHandler:);
  id decider = [delegate respondsToSelector:asked] ? delegate : [session delegate];
  if ([decider respondsToSelector:asked])
    [decider URLSession:session
                              task:self
        willPerformHTTPRedirection:responseTo(request, 307)
                        newRequest:next
                 completionHandler:decide];
  else
    decide(next);
}

- (void)finish:(const orvane::DataTaskResult&)result of:(NSURLRequest*)request {
  // Like NSURLSession after a body that was cut, hands over an error with the part before it.
  NSData* body = result.error ? [NSData dataWithBytes:"{}" length:2] : nil;
  if (result.body && !result.body->empty())
    body = [NSData dataWithBytes:result.body->data() length:result.body->size()];
  NSURLResponse* response = nil;
  if (result.response || result.error)
    response = responseTo(request, result.response ? result.response->statusCode : 200);
  finished(body, response, result.error ? errorOf(*result.error) : nil);
}

- (void)dealloc {
  Block_release(finished);
  [delegate release];
  [original release];
  [session release];
  [super dealloc];
}

@end

@implementation NSURLSessionDataTask
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

- (id<NSURLSessionDelegate>)delegate {
  return delegate;
}

- (NSURLSessionDataTask*)dataTaskWithRequest:(NSURLRequest*)request completionHandler:(Handler)handler {
  NSURLSessionDataTask* const task = [[[NSURLSessionDataTask alloc] init] autorelease];
  task->session = [self retain];
  task->original = [request copy];
  task->finished = Block_copy(handler);
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

}  // namespace standins
