#pragma once

#import <Foundation/NSError.h>
#import <Foundation/NSOperation.h>
#import <Foundation/NSURLRequest.h>
#import <Foundation/NSURLResponse.h>

@interface NSURLSessionDataTask : NSObject
- (void)resume;
@end

@interface NSURLSession : NSObject
+ (NSURLSession*)sharedSession;
- (NSOperationQueue*)delegateQueue;
- (NSURLSessionDataTask*)dataTaskWithRequest:(NSURLRequest*)request
                           completionHandler:
                               (void (^)(NSData* body, NSURLResponse* response, NSError* error))handler;
@end
