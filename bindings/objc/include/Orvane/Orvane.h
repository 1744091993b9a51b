#import <Foundation/Foundation.h>

// What the header tells Swift. The macros are empty where the system's headers lack them.
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

/// The library's build record: program, project, project version, line feed.
FOUNDATION_EXPORT const unsigned char OrvaneVersionString[];

#ifdef __cplusplus
}
#endif

/// Signs a user in with a mobile phone number: fetches a picture to read, has a code sent by SMS, and logs in
/// with it.
///
/// Each call sends one request over plain HTTP and calls its block exactly once: on the main queue after a
/// reply, accepted or refused, else on the URL session's delegate queue in the background. A login without a
/// JSON reply stops the process, and so does any reply that lacks what the call reads. OVSession prevents
/// both. docs/errors.md lists all outcomes, and orvane/client/OrvaneManager.h has the same contract for C++.
///
/// A refusal is an error whose domain is the service's message. A network error is the URL session's own
/// object. An argument that UTF-8 cannot hold, a lone surrogate, stops the process.
///
/// The calls may be made from any thread. The library copies the block and releases it when the call has
/// ended. It does not retain the manager.
///
/// In Objective-C++, `using namespace orvane` makes the names OrvaneManager and OVDeviceInfoTool ambiguous,
/// because the C++ interface has classes of these names. Write `orvane::` there.
__attribute__((visibility("default")))
@interface OrvaneManager : NSObject {
 @private
  NSString* clientId;
}

/// The shared manager. Made on first use and never destroyed. C++ shares it:
/// orvane::OrvaneManager::shareManager().
@property(class, nonatomic, readonly) OrvaneManager* shareManager ORVANE_NAME(shareManager);

/// The application's client identifier. Nil at first. Sent as the header XRAPI-CLIENT-ID once set, even if
/// empty. Left out if it contains NUL, CR or LF. A lone surrogate in it is sent as U+FFFD. Each call reads it
/// through this getter, and so do calls that C++ makes on the shared manager. Not synchronised: do not set it
/// while another thread uses the manager.
@property(nonatomic, copy, nullable) NSString* clientId;

/// Makes a manager with a client identifier of its own. All managers send through the same URL session.
- (instancetype)init;

/// Sets the client identifier of later calls, through the property's setter.
- (void)setAppClientId:(NSString*)clientId;

/// Fetches the picture verification code for a mobile number. The block receives its bytes, which may be
/// none, or an error. An error other than a refusal is also written to standard output: one line with its
/// domain and code.
- (void)requestPictureCode:(NSString*)mobile
                  finished:(void(ORVANE_SENDABLE ^)(NSData* _Nullable data, NSError* _Nullable error))finished
    ORVANE_ASYNC(2);

/// Has a code sent by SMS to a mobile number. `codeNumber` is what the user read from the picture. A refusal
/// has the code of the service's reply.
- (void)requestCode:(NSString*)mobile
         codeNumber:(NSString*)codeNumber
           finished:(void(ORVANE_SENDABLE ^)(NSError* _Nullable error))finished ORVANE_ASYNC(3);

/// Logs in with the code that came by SMS. The block receives the service's message, for an accepted and for
/// a refused login, and for a refused one an error with the code 1.
///
/// Warning: stops the process if the request fails or the reply is not JSON, because the reply is read before
/// the error.
///
/// After an accepted login a report is sent to the service: the system's version, the carrier's name and the
/// device's model. Its outcome is ignored.
- (void)requestLogin:(NSString*)mobile
                code:(NSString*)code
            finished:(void(ORVANE_SENDABLE ^)(NSString* _Nullable message, NSError* _Nullable error))finished
    ORVANE_ASYNC(3);

@end

/// Reads facts about the device from the system, anew with each call. May be used from any thread.
ORVANE_SENDABLE
__attribute__((visibility("default")))
@interface OVDeviceInfoTool : NSObject

/// Returns the device's identifier for the application's vendor. Stops the process if there is none.
+ (NSString*)getMEIDCode;

/// Returns the model word, such as "iPhone". Despite its name it does not return the system's name.
+ (NSString*)getSystemName;

/// Returns "iOS " and the system's version.
+ (NSString*)getSystemVersion;

/// Returns the mobile carrier's name, or "nil" if there is none.
+ (NSString*)getcarrierName;

/// Makes an object that has no use, since all methods are the class's.
- (instancetype)init;

@end

/// Sets the URL session of all calls. Without it they use NSURLSession's shared session, and a login stops
/// the process if its request fails.
///
/// Call one of its methods at most once, before the first call of any manager and before OVDeviceInfoTool is
/// used. Later they stop the process.
ORVANE_SENDABLE
__attribute__((visibility("default")))
@interface OVSession : NSObject

/// Sends all requests through `session`. Its delegate queue must be serial and not the main queue, as it is
/// by default.
///
/// With a `failureMessage` nothing that the network sends stops the process. Where a call would stop it, the
/// block receives on the main queue a refusal with that message as its domain, and with the code -1, or 1 for
/// a login. Nil changes nothing.
+ (void)useSession:(NSURLSession*)session
    failureMessage:(nullable NSString*)failureMessage ORVANE_NAME(use(_:failureMessage:));

/// As above. If `encrypted` is true, also sends the requests to the service over HTTPS, which the service
/// must offer on port 443.
+ (void)useSession:(NSURLSession*)session
    failureMessage:(nullable NSString*)failureMessage
         encrypted:(BOOL)encrypted ORVANE_NAME(use(_:failureMessage:encrypted:));

/// Makes an object that has no use, since all methods are the class's.
- (instancetype)init;

@end

NS_ASSUME_NONNULL_END

#undef ORVANE_NAME
#undef ORVANE_SENDABLE
#undef ORVANE_ASYNC
