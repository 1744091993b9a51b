#pragma once

#import <Foundation/NSError.h>
#import <Foundation/NSOperation.h>
#import <Foundation/NSURLRequest.h>
#import <Foundation/NSURLResponse.h>

@class DelegateQueue, NSURLSession, NSURLSessionTask;

@protocol NSURLSessionDelegate <NSObject>
@end

@protocol NSURLSessionTaskDelegate <NSURLSessionDelegate>
@optional
- (void)URLSession:(NSURLSession*)session
                          task:(NSURLSessionTask*)task
    willPerformHTTPRedirection:(NSHTTPURLResponse*)response
                    newRequest:(NSURLRequest*)request
             completionHandler:(void (^)(NSURLRequest* continued))completionHandler;
@end

@interface NSURLSessionTask : NSObject {
 @public
  NSURLSession* session;
  NSURLRequest* original;
  void (^finished)(NSData* body, NSURLResponse* response, NSError* error);
  id<NSURLSessionTaskDelegate> delegate;
}
- (void)resume;
- (void)setDelegate:(id<NSURLSessionTaskDelegate>)delegate;
@end

@interface NSURLSessionDataTask : NSURLSessionTask
@end

@interface NSURLSession : NSObject {
 @public
  DelegateQueue* queue;
  id<NSURLSessionDelegate> delegate;
}
+ (NSURLSession*)sharedSession;
- (id<NSURLSessionDelegate>)delegate;
- (NSOperationQueue*)delegateQueue;
- (NSURLSessionDataTask*)dataTaskWithRequest:(NSURLRequest*)request
                           completionHandler:
                               (void (^)(NSData* body, NSURLResponse* response, NSError* error))handler;
@end
