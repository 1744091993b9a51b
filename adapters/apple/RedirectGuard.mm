#import "adapters/apple/RedirectGuard.h"

#import "adapters/apple/retained.h"

bool orvane::losesEncryption(NSURL* from, NSURL* to) {
  return [[[from scheme] lowercaseString] isEqualToString:@"https"] &&
         [[[to scheme] lowercaseString] isEqualToString:@"http"];
}

@implementation OVRedirectGuard

- (void)URLSession:(NSURLSession*)session
                          task:(NSURLSessionTask*)task
    willPerformHTTPRedirection:(NSHTTPURLResponse*)response
                    newRequest:(NSURLRequest*)request
             completionHandler:(void (^)(NSURLRequest* continued))completionHandler {
  if (orvane::losesEncryption([response URL], [request URL])) {
    *refused = orvane::retained([request URL]);
    completionHandler(nil);
    return;
  }
  // A task's delegate hides this method of the session's.
  const id<NSURLSessionTaskDelegate> theirs = (id<NSURLSessionTaskDelegate>)[session delegate];
  if ([theirs respondsToSelector:_cmd])
    [theirs URLSession:session
                              task:task
        willPerformHTTPRedirection:response
                        newRequest:request
                 completionHandler:completionHandler];
  else
    completionHandler(request);
}

@end
