#import "orvane/apple/AppleSession.h"

#import "adapters/apple/RedirectGuard.h"
#import "adapters/apple/platformString.h"
#import "adapters/apple/retained.h"
#import "orvane/apple/platformError.h"
#include "orvane/base/fatal.h"

namespace orvane {
namespace {

NSURLRequest* platformRequest(const URLRequest& request) {
  NSURL* const url = [NSURL URLWithString:platformString(request.url())];
  NSMutableURLRequest* const made = [NSMutableURLRequest requestWithURL:url];
  [made setHTTPMethod:platformString(request.method())];
  if (const std::optional<Bytes>& body = request.body())
    [made setHTTPBody:[NSData dataWithBytes:body->data() length:body->size()]];
  for (const HeaderField& field : request.headers())
    [made addValue:platformString(field.value) forHTTPHeaderField:platformString(field.name)];
  return made;
}

/// Refers to the bytes of `data` in place. Copies only mutable data: `copy` returns immutable data itself.
Body borrowedBody(NSData* data) {
  NSData* const kept = autoreleased([data copy]);
  return {{static_cast<const std::uint8_t*>([kept bytes]), [kept length]}, retained(kept)};
}

/// Drops what comes with an error: a response, or the part of the body that arrived before it.
DataTaskResult resultOf(NSData* body, NSURLResponse* response, NSError* error) {
  if (error) return {std::nullopt, std::nullopt, makeError(error)};
  DataTaskResult result;
  // NSURLSession may report an empty body as nil.
  if (body || response) result.body = borrowedBody(body);
  if ([response isKindOfClass:[NSHTTPURLResponse class]])
    result.response = HTTPResponse{static_cast<int>([(NSHTTPURLResponse*)response statusCode])};
  return result;
}

/// Makes the error that NSURLSession has for a URL that it cannot load.
NSError* unsupportedURL(NSURL* url) {
  return [NSError errorWithDomain:NSURLErrorDomain
                             code:NSURLErrorUnsupportedURL
                         userInfo:@{
                           NSLocalizedDescriptionKey : @"unsupported URL",
                           NSURLErrorFailingURLErrorKey : url,
                           NSURLErrorFailingURLStringErrorKey : [url absoluteString],
                         }];
}

/// Gives the task a delegate, where tasks can have one of their own. Does nothing on other systems.
void guardRedirects(NSURLSessionTask* task, std::shared_ptr<RefusedURL> refused) {
  if (@available(iOS 15.0, macOS 12.0, macCatalyst 15.0, *)) {
    if (![task respondsToSelector:@selector(setDelegate:)]) return;
    OVRedirectGuard* const guard = autoreleased([[OVRedirectGuard alloc] init]);
    guard->refused = std::move(refused);
    [task setDelegate:guard];
  }
}

}  // namespace

AppleSession::AppleSession(NSURLSession* session) : session_(retained(session)) {
  // A message to nil does nothing, so no handler would ever be called.
  if (!session) fatal("AppleSession: there is no NSURLSession");
}

NSURLSession* AppleSession::session() const {
  return objectIn<NSURLSession>(session_);
}

void AppleSession::startDataTask(URLRequest request, DataTaskHandler handler) {
  const auto kept = std::make_shared<const DataTaskHandler>(std::move(handler));
  const auto refused = std::make_shared<RefusedURL>();
  @autoreleasepool {
    NSURLRequest* const made = platformRequest(request);
    const std::shared_ptr<const void> first = retained([made URL]);
    NSURLSessionDataTask* const task =
        [session() dataTaskWithRequest:made
                     completionHandler:^(NSData* body, NSURLResponse* response, NSError* error) {
                       // Without a guard the task has followed a redirect to plain HTTP.
                       if (losesEncryption(objectIn<NSURL>(first), [response URL]))
                         *refused = retained([response URL]);
                       NSError* const refusal = *refused ? unsupportedURL(objectIn<NSURL>(*refused)) : nil;
                       if (*kept) (*kept)(resultOf(body, response, refusal ? refusal : error));
                     }];
    guardRedirects(task, refused);
    [task resume];
  }
}

void AppleSession::cancelAllOperations() {
  @autoreleasepool {
    [[session() delegateQueue] cancelAllOperations];
  }
}

}  // namespace orvane
