#pragma once

#import <Foundation/NSError.h>
#import <Foundation/NSOperation.h>
#import <Foundation/NSURLRequest.h>
#import <Foundation/NSURLResponse.h>

@interface NSURLSessionDataTask : NSObject
- (void)resume;
@end

@interface NSURLSessionConfiguration : NSObject {
  NSDictionary* connectionProxyDictionary;
}
+ (NSURLSessionConfiguration*)ephemeralSessionConfiguration;
@property(copy) NSDictionary* connectionProxyDictionary;
@end

@interface NSURLSession : NSObject
+ (NSURLSession*)sharedSession;
+ (NSURLSession*)sessionWithConfiguration:(NSURLSessionConfiguration*)configuration;
- (NSOperationQueue*)delegateQueue;
- (NSURLSessionDataTask*)dataTaskWithRequest:(NSURLRequest*)request
                           completionHandler:
                               (void (^)(NSData* body, NSURLResponse* response, NSError* error))handler;
@end
