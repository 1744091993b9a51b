#import <Foundation/Foundation.h>

// What Swift is told, where the system's headers have the words for it.
#ifdef NS_SWIFT_NAME
#define ORVANE_NAME(name) NS_SWIFT_NAME(name)
#else
#define ORVANE_NAME(name)
#endif
#ifdef NS_SWIFT_SENDABLE
#define ORVANE_SENDABLE NS_SWIFT_SENDABLE
#else
#define ORVANE_SENDABLE
#endif
#ifdef NS_SWIFT_ASYNC
#define ORVANE_ASYNC(place) NS_SWIFT_ASYNC(place)
#else
#define ORVANE_ASYNC(place)
#endif

NS_ASSUME_NONNULL_BEGIN

#ifdef __cplusplus
extern "C" {
#endif

/// The library's version as a number.
FOUNDATION_EXPORT const double OrvaneVersionNumber;

/// The library's build record: program, project and project version, and a line feed.
FOUNDATION_EXPORT const unsigned char OrvaneVersionString[];

#ifdef __cplusplus
}
#endif

/// Signs a user in with a mobile phone number: a picture code, a code by SMS, the login.
///
/// Each call sends one request over plain HTTP and calls its block exactly once: on the main queue for a
/// reply, whether accepted or refused; on the URL session's background queue for a network error or a reply
/// that is not JSON. A refusal is an error whose domain is the service's message. A network error is the URL
/// session's own object. A reply without the members that a call reads stops the process, and the block is
/// not called. So does an argument of the three calls that UTF-8 cannot hold. See OVSession for an
/// application that must outlive what the network sends.
///
/// In Objective-C++, `using namespace orvane` makes the names of this class and of OVDeviceInfoTool
/// ambiguous: the C++ interface has classes of the same names. Write `orvane::` there.
///
/// The calls may be made from any thread. Blocks are copied, and released after the call; managers are not
/// kept.
__attribute__((visibility("default")))
@interface OrvaneManager : NSObject {
 @private
  NSString* clientId;
}

/// The shared manager; made once, on first use, and never destroyed. It is also the C++ interface's.
@property(class, nonatomic, readonly) OrvaneManager* shareManager ORVANE_NAME(shareManager);

/// The application's client identifier, sent with each call while it is present, also while it is empty. Nil
/// at first. One with NUL, CR or LF cannot be a header's value and is left out. A lone surrogate is sent as
/// U+FFFD. The calls read the identifier through this getter, those that C++ makes on the shared manager as
/// well. Not synchronised: do not set it while another thread uses the manager.
@property(nonatomic, copy, nullable) NSString* clientId;

/// A manager with a client identifier of its own. All managers use one transport.
- (instancetype)init;

/// Sets the client identifier, unchanged, for the calls to come, by the property's setter.
- (void)setAppClientId:(NSString*)clientId;

/// Fetches the picture verification code for a mobile number: its bytes, possibly none, or an error. An error
/// other than a refusal is also written to standard output, as a line with its domain and code.
- (void)requestPictureCode:(NSString*)mobile
                  finished:(void(ORVANE_SENDABLE ^)(NSData* _Nullable data, NSError* _Nullable error))finished
    ORVANE_ASYNC(2);

/// Has a code sent by SMS to the mobile number; `codeNumber` is what the user read from the picture. A
/// refusal's code is the service's.
- (void)requestCode:(NSString*)mobile
         codeNumber:(NSString*)codeNumber
           finished:(void(ORVANE_SENDABLE ^)(NSError* _Nullable error))finished ORVANE_ASYNC(3);

/// Logs in with the code that came by SMS. `message` is the service's, for an accepted and for a refused
/// login. When the login is accepted, the system's version, the carrier's name and the device's model are
/// sent to the service. A refusal's code is 1. The process stops when the request fails: this call reads the
/// reply first.
- (void)requestLogin:(NSString*)mobile
                code:(NSString*)code
            finished:(void(ORVANE_SENDABLE ^)(NSString* _Nullable message, NSError* _Nullable error))finished
    ORVANE_ASYNC(3);

@end

/// Facts about the device, read from the system at the moment of each call. May be used from any thread.
ORVANE_SENDABLE
__attribute__((visibility("default")))
@interface OVDeviceInfoTool : NSObject

/// The device's identifier in the application vendor's scope. Stops the process where there is none.
+ (NSString*)getMEIDCode;

/// Returns the model word, such as "iPhone". Despite its name it does not return the system's name.
+ (NSString*)getSystemName;

/// "iOS " and the system's version.
+ (NSString*)getSystemVersion;

/// The mobile carrier's name; "nil" where there is none.
+ (NSString*)getcarrierName;

- (instancetype)init;

@end

/// Sets the URL session of all calls. An application that is content with NSURLSession's shared session, and
/// with a login that stops the process when its request fails, does without this class.
///
/// Must be called before the first call of a manager, and once. Stops the process if it is called too late or
/// again.
ORVANE_SENDABLE
__attribute__((visibility("default")))
@interface OVSession : NSObject

/// Sends all requests through `session`, whose delegate queue must be serial and not the main queue, as it is
/// by default.
///
/// With a `failureMessage`, nothing that the network sends stops the process: where a call would do so, its
/// block receives a refusal with that message as domain, on the main queue. The code is -1, or 1 for a login.
/// Nil leaves the calls as they are.
+ (void)useSession:(NSURLSession*)session
    failureMessage:(nullable NSString*)failureMessage ORVANE_NAME(use(_:failureMessage:));

/// Likewise. If `encrypted` is true, requests to the service go over HTTPS, on port 443, which the service
/// must offer.
+ (void)useSession:(NSURLSession*)session
    failureMessage:(nullable NSString*)failureMessage
         encrypted:(BOOL)encrypted ORVANE_NAME(use(_:failureMessage:encrypted:));

- (instancetype)init;

@end

NS_ASSUME_NONNULL_END

#undef ORVANE_NAME
#undef ORVANE_SENDABLE
#undef ORVANE_ASYNC
