#import "adapters/apple/AppleTextRules.h"

#import "adapters/apple/platformText.h"

namespace orvane {

bool AppleTextRules::isURL(std::string_view text) const {
  @autoreleasepool {
    return [NSURL URLWithString:platformText(text)] != nil;
  }
}

bool AppleTextRules::isAlphanumeric(char32_t codePoint) const {
  @autoreleasepool {
    return [[NSCharacterSet alphanumericCharacterSet] longCharacterIsMember:codePoint];
  }
}

}  // namespace orvane
