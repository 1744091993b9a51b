#include "orvane/client/OrvaneManager.h"

#import "adapters/apple/platformString.h"
#import "orvane/apple/platformError.h"
#include "orvane/client/sharedManagerMaker.h"

#import "bindings/objc/KeptBlock.h"
#import "bindings/objc/include/Orvane/Orvane.h"
#import "bindings/objc/registerQualifiedName.h"

namespace {

/// Makes the calls of one Objective-C object. Reads and sets the client identifier through the object's
/// accessors, so that an override of them counts.
class BoundManager final : public orvane::OrvaneManager {
 public:
  explicit BoundManager(::OrvaneManager* object) : object_(object) {}

  std::optional<std::string> clientId() const override {
    @autoreleasepool {
      return orvane::optionalUTF8([object_ clientId]);
    }
  }
  void setClientId(std::optional<std::string> clientId) override {
    @autoreleasepool {
      [object_ setClientId:orvane::platformStringOrNil(clientId)];
    }
  }

 private:
  ::OrvaneManager* object_;  // Outlives this.
};

std::unique_ptr<orvane::OrvaneManager> makeSharedManager() {
  return std::make_unique<BoundManager>([OrvaneManager shareManager]);
}

}  // namespace

@implementation OrvaneManager

@synthesize clientId = clientId;

+ (void)load {
  orvane::registerQualifiedName(self);
  orvane::sharedManagerMaker = makeSharedManager;
}

+ (OrvaneManager*)shareManager {
  static OrvaneManager* const shareInstance = [[OrvaneManager alloc] init];
  return shareInstance;
}

- (instancetype)init {
  return [super init];
}

#if !__has_feature(objc_arc)
- (void)dealloc {
  [clientId release];
  [super dealloc];
}
#endif

- (void)setAppClientId:(NSString*)identifier {
  [self setClientId:identifier ? identifier : @""];
}

- (void)requestPictureCode:(NSString*)mobile finished:(void (^)(NSData* data, NSError* error))finished {
  const orvane::KeptBlock block(finished);
  BoundManager(self).requestPictureCode(
      orvane::utf8(mobile), [block](const std::optional<orvane::Bytes>& data, const orvane::ErrorPtr& error) {
        @autoreleasepool {
          block(data ? [NSData dataWithBytes:data->data() length:data->size()] : nil,
                orvane::platformError(error));
        }
      });
}

- (void)requestCode:(NSString*)mobile
         codeNumber:(NSString*)codeNumber
           finished:(void (^)(NSError* error))finished {
  const orvane::KeptBlock block(finished);
  BoundManager(self).requestCode(orvane::utf8(mobile), orvane::utf8(codeNumber),
                                 [block](const orvane::ErrorPtr& error) {
                                   @autoreleasepool {
                                     block(orvane::platformError(error));
                                   }
                                 });
}

- (void)requestLogin:(NSString*)mobile
                code:(NSString*)code
            finished:(void (^)(NSString* message, NSError* error))finished {
  const orvane::KeptBlock block(finished);
  BoundManager(self).requestLogin(
      orvane::utf8(mobile), orvane::utf8(code),
      [block](const std::optional<std::string>& message, const orvane::ErrorPtr& error) {
        @autoreleasepool {
          block(orvane::platformStringOrNil(message), orvane::platformError(error));
        }
      });
}

@end
