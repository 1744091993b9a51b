#import "orvane/apple/AppleSession.h"

#import "adapters/apple/platformText.h"
#import "adapters/apple/retained.h"
#import "orvane/apple/platformError.h"
#include "orvane/base/fatal.h"

namespace orvane {
namespace {

NSURLRequest* platformRequest(const URLRequest& request) {
  NSURL* const url = [NSURL URLWithString:platformText(request.url())];
  NSMutableURLRequest* const made = [[[NSMutableURLRequest alloc] initWithURL:url] autorelease];
  [made setHTTPMethod:platformText(request.method())];
  if (const std::optional<Bytes>& body = request.body())
    [made setHTTPBody:[NSData dataWithBytes:body->data() length:body->size()]];
  for (const HeaderField& field : request.headers())
    [made addValue:platformText(field.value) forHTTPHeaderField:platformText(field.name)];
  return made;
}

/// Refers to the bytes of `data` in place. Only mutable data is copied: `copy` returns immutable data itself.
Body lentBody(NSData* data) {
  NSData* const kept = [[data copy] autorelease];
  return {{static_cast<const std::uint8_t*>([kept bytes]), [kept length]}, retained(kept)};
}

/// An error may come with a response and with the part of the body that arrived before it.
DataTaskResult resultOf(NSData* body, NSURLResponse* response, NSError* error) {
  if (error) return {std::nullopt, std::nullopt, makeError(error)};
  DataTaskResult result;
  // NSURLSession may report an empty body as nil.
  if (body || response) result.body = lentBody(body);
  if ([response isKindOfClass:[NSHTTPURLResponse class]])
    result.response = HTTPResponse{static_cast<int>([(NSHTTPURLResponse*)response statusCode])};
  return result;
}

}  // namespace

AppleSession::AppleSession(NSURLSession* session) : session_(retained(session)) {
  // A message to nil does nothing, so no handler would ever be called.
  if (!session) fatal("AppleSession: there is no NSURLSession");
}

NSURLSession* AppleSession::session() const {
  return (NSURLSession*)session_.get();
}

void AppleSession::startDataTask(URLRequest request, DataTaskHandler handler) {
  const auto kept = std::make_shared<const DataTaskHandler>(std::move(handler));
  @autoreleasepool {
    [[session() dataTaskWithRequest:platformRequest(request)
                  completionHandler:^(NSData* body, NSURLResponse* response, NSError* error) {
                    if (*kept) (*kept)(resultOf(body, response, error));
                  }] resume];
  }
}

void AppleSession::cancelAllOperations() {
  @autoreleasepool {
    [[session() delegateQueue] cancelAllOperations];
  }
}

}  // namespace orvane
