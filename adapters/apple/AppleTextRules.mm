#import "adapters/apple/AppleTextRules.h"

#import "adapters/apple/platformString.h"

namespace orvane {

bool AppleTextRules::isURL(std::string_view text) const {
  @autoreleasepool {
    return [NSURL URLWithString:platformString(text)] != nil;
  }
}

bool AppleTextRules::isAlphanumeric(char32_t codePoint) const {
  @autoreleasepool {
    return [[NSCharacterSet alphanumericCharacterSet] longCharacterIsMember:codePoint];
  }
}

}  // namespace orvane
