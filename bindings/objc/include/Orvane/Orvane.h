#import <Foundation/Foundation.h>

// Annotations for Swift, empty where the system's headers lack them.
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
/// Each call sends one request and calls its block exactly once: on the main queue if the service accepted or
/// refused it, else on the URL session's delegate queue in the background. A login without a JSON reply stops
/// the process, and so does any reply that lacks what the call reads. The words of OVSession prevent both.
/// docs/errors.md lists all outcomes, and orvane/client/OrvaneManager.h has the same contract for C++.
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

/// Fetches the picture verification code for a mobile number. The block receives the bytes of the picture,
/// which may be empty, or an error. An error other than a refusal is also written to standard output: one
/// line with its domain and code.
- (void)requestPictureCode:(NSString*)mobile
                  finished:(void(ORVANE_SENDABLE ^)(NSData* _Nullable data, NSError* _Nullable error))finished
    ORVANE_ASYNC(2);

/// Has a code sent by SMS to a mobile number. `codeNumber` is what the user read from the picture. A refusal
/// has the code of the service's reply.
- (void)requestCode:(NSString*)mobile
         codeNumber:(NSString*)codeNumber
           finished:(void(ORVANE_SENDABLE ^)(NSError* _Nullable error))finished ORVANE_ASYNC(3);

/// Logs in with the code that came by SMS. The block receives the service's message after an accepted login,
/// and the message and an error with the code 1 after a refused one. After any other failure it receives the
/// words of OVSession, and an error.
///
/// Warning: without the words of OVSession, stops the process if the request fails or the reply is not JSON,
/// because the reply is read before the error.
///
/// After an accepted login the library sends a report to the service: the system's version, the carrier's
/// name and the device's model. It ignores the outcome.
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

/// Makes an object without any use: all methods are class methods.
- (instancetype)init;

@end

/// The kinds of failure that an application may treat differently. docs/errors.md says what to do after each.
typedef NS_ENUM(NSInteger, OVErrorKind) {
  OVErrorKindRefused,       ///< The service refused the call.
  OVErrorKindNotSent,       ///< The request could not be built, or a URL on its way cannot be used.
  OVErrorKindNoConnection,  ///< The connection failed or was lost. The service may have received the request.
  OVErrorKindTimedOut,      ///< No reply came in time. The service may have received the request.
  OVErrorKindNotSecure,     ///< No secure connection could be made.
  OVErrorKindNotReadable,   ///< A reply came that could not be read.
  OVErrorKindOther,         ///< Anything else.
};

#ifdef __cplusplus
extern "C" {
#endif

/// Returns the kind of an error that a block received. An error without user information is a refusal.
__attribute__((visibility("default"))) OVErrorKind OVKindOfError(NSError* error);

/// Returns one sentence for a person: the message of a refusal, the application's own words for a failure,
/// the system's description of its error, or an English sentence if there is none of these.
__attribute__((visibility("default"))) NSString* OVMessageOfError(NSError* error);

#ifdef __cplusplus
}
#endif

/// Chooses the URL session, the address and the words for failures of all calls. Without it they use
/// NSURLSession's shared session and the address that is compiled in, and a login stops the process if its
/// request fails.
ORVANE_SENDABLE
__attribute__((visibility("default")))
@interface OVSession : NSObject

/// Sends all requests through `session`, to `address`.
///
/// `session` must not be invalidated. Its delegate queue must be serial and not the main queue, as it is by
/// default. Nil: NSURLSession's shared session.
///
/// `address` is "http://" or "https://", a host, and optionally a port and a path. Any other URL stops the
/// process. Nil: the address that is compiled in.
///
/// `failureWords` returns what to tell a person about a failure. Where a call would stop the process for what
/// the network did, it calls `failureWords` with the cause, on the main queue. Then the call's own block
/// receives, also on the main queue, an error whose domain is the words, and whose code is -1, or 1 for a
/// login. OVKindOfError() returns the kind of its cause. With nil, such a call stops the process.
///
/// The last call counts. A call after a manager has made a request, or after OVDeviceInfoTool was used, stops
/// the process.
+ (void)useSession:(nullable NSURLSession*)session
           address:(nullable NSURL*)address
      failureWords:(nullable NSString*(ORVANE_SENDABLE ^)(NSError* cause))failureWords
    ORVANE_NAME(use(_:address:failureWords:));

/// Makes an object without any use: all methods are class methods.
- (instancetype)init;

@end

NS_ASSUME_NONNULL_END

#undef ORVANE_NAME
#undef ORVANE_SENDABLE
#undef ORVANE_ASYNC
