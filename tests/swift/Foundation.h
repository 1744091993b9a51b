// What Orvane.h and the documents use of Foundation, as Swift imports it: with Apple's attributes, and with
// String, Data and Error in place of the classes.
#pragma once

#define NS_ASSUME_NONNULL_BEGIN _Pragma("clang assume_nonnull begin")
#define NS_ASSUME_NONNULL_END _Pragma("clang assume_nonnull end")
#define NS_SWIFT_NAME(name) __attribute__((swift_name(#name)))
#define NS_SWIFT_SENDABLE __attribute__((swift_attr("@Sendable")))
#define NS_SWIFT_ASYNC(place) __attribute__((swift_async(not_swift_private, place)))
#define FOUNDATION_EXPORT extern

typedef _Bool BOOL;
typedef long NSInteger;

NS_ASSUME_NONNULL_BEGIN

__attribute__((objc_root_class))
@interface NSObject
- (instancetype)init;
@end

__attribute__((swift_bridge("Swift.String")))
@interface NSString : NSObject
@end

__attribute__((swift_bridge("Data")))
@interface NSData : NSObject
@end

NS_SWIFT_SENDABLE __attribute__((swift_bridge("Swift.Error")))
@interface NSError : NSObject
@property(readonly, copy) NSString* domain;
@property(readonly) NSInteger code;
@property(readonly, copy) NSString* localizedDescription;
@end

extern NSString* const NSURLErrorDomain;
extern NSString* const NSPOSIXErrorDomain;

NS_SWIFT_NAME(URLSessionConfiguration) @interface NSURLSessionConfiguration : NSObject
@property(class, readonly, strong)
    NSURLSessionConfiguration* ephemeralSessionConfiguration NS_SWIFT_NAME(ephemeral);
@end

NS_SWIFT_SENDABLE NS_SWIFT_NAME(URLSession) @interface NSURLSession : NSObject
@property(class, readonly, strong) NSURLSession* sharedSession NS_SWIFT_NAME(shared);
+ (NSURLSession*)sessionWithConfiguration:(NSURLSessionConfiguration*)configuration
    NS_SWIFT_NAME(init(configuration:));
@end

NS_ASSUME_NONNULL_END
