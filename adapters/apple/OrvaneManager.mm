#include "orvane/client/OrvaneManager.h"

#import "adapters/apple/KeptBlock.h"
#import "adapters/apple/Orvane/Orvane.h"
#import "adapters/apple/qualifiedName.h"
#import "adapters/apple/text.h"
#import "orvane/apple/AppleError.h"

namespace {

/// The manager of one object. Its calls reach the identifier through the object, so that an override of the object's
/// accessors counts.
class BoundManager final : public orvane::OrvaneManager {
 public:
  explicit BoundManager(::OrvaneManager* object) : object_(object) {}

  std::optional<std::string> clientId() const override { return orvane::optionalUTF8([object_ clientId]); }
  void setClientId(std::optional<std::string> clientId) override {
    [object_ setClientId:orvane::platformTextOrNil(clientId)];
  }

 private:
  ::OrvaneManager* object_;  // Owns this.
};

}  // namespace

@implementation OrvaneManager

/// No method, which a subclass might take for its own.
static orvane::OrvaneManager& managerOf(OrvaneManager* object) {
  return *static_cast<orvane::OrvaneManager*>(object->_orvaneManager);
}

static OrvaneManager* makeShared() {
  OrvaneManager* const object = [OrvaneManager alloc];
  object->_orvaneManager = &orvane::OrvaneManager::shareManager();  // For ever. `init` would make another.
  return object;
}

+ (void)load {
  orvane::registerQualifiedName(self);
}

+ (OrvaneManager*)shareManager {
  static OrvaneManager* const shareInstance = makeShared();
  return shareInstance;
}

- (instancetype)init {
  if ((self = [super init]))
    _orvaneManager = static_cast<orvane::OrvaneManager*>(std::make_unique<BoundManager>(self).release());
  return self;
}

- (void)dealloc {
  // Null where a subclass gave up before `init`.
  const std::unique_ptr<orvane::OrvaneManager> owned(static_cast<orvane::OrvaneManager*>(_orvaneManager));
  [super dealloc];
}

- (NSString*)clientId {
  return orvane::platformTextOrNil(managerOf(self).OrvaneManager::clientId());
}

- (void)setClientId:(NSString*)clientId {
  managerOf(self).OrvaneManager::setClientId(orvane::optionalUTF8(clientId));
}

- (void)setAppClientId:(NSString*)clientId {
  managerOf(self).setAppClientId(orvane::utf8(clientId));
}

- (void)requestPictureCode:(NSString*)mobile finished:(void (^)(NSData* data, NSError* error))finished {
  const orvane::KeptBlock block(finished);
  managerOf(self).requestPictureCode(
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
  managerOf(self).requestCode(orvane::utf8(mobile), orvane::utf8(codeNumber),
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
  managerOf(self).requestLogin(
      orvane::utf8(mobile), orvane::utf8(code),
      [block](const std::optional<std::string>& message, const orvane::ErrorPtr& error) {
        @autoreleasepool {
          block(orvane::platformTextOrNil(message), orvane::platformError(error));
        }
      });
}

@end
