#pragma once

#import <Foundation/NSError.h>
#import <Foundation/NSOperation.h>
#import <Foundation/NSURLRequest.h>
#import <Foundation/NSURLResponse.h>

@interface NSURLSessionDataTask : NSObject {
 @public
  void (^start)(void);
}
- (void)resume;
@end

@class DelegateQueue;

@interface NSURLSession : NSObject {
 @public
  DelegateQueue* queue;
}
+ (NSURLSession*)sharedSession;
- (NSOperationQueue*)delegateQueue;
- (NSURLSessionDataTask*)dataTaskWithRequest:(NSURLRequest*)request
                           completionHandler:
                               (void (^)(NSData* body, NSURLResponse* response, NSError* error))handler;
@end
