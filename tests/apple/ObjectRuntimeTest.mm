// The classes as the object runtime and their callers see them, and what the adapter converts.

#import <Orvane/Orvane.h>
#include <gtest/gtest.h>
#import <objc/runtime.h>

#import "adapters/apple/platformString.h"
#import "orvane/apple/platformError.h"
#include "orvane/orvane.h"
#include "tests/apple/standins/standins.h"

namespace {

using orvane::optionalUTF8;
using orvane::platformString;
using orvane::utf8;

/// Returns each UTF-16 unit, because two texts with different units may count as equal.
std::u16string unitsOf(NSString* text) {
  std::u16string units;
  for (NSUInteger at = 0; at < [text length]; ++at) units.push_back([text characterAtIndex:at]);
  return units;
}

TEST(ObjectRuntime, SharesOneManagerAndMakesOthers) {
  @autoreleasepool {
    OrvaneManager* const shared = [OrvaneManager shareManager];
    EXPECT_EQ([NSClassFromString(@"Orvane.OrvaneManager") shareManager], shared);
    EXPECT_TRUE([shared isMemberOfClass:[OrvaneManager class]]);
    OrvaneManager* const own = [[[OrvaneManager alloc] init] autorelease];
    orvane::OrvaneManager& fromCpp = orvane::OrvaneManager::shareManager();
    [shared setClientId:@"shared"];
    EXPECT_EQ([own clientId], nil);
    [own setAppClientId:@"own"];
    EXPECT_EQ(fromCpp.clientId(), "shared");
    fromCpp.setClientId({});
    EXPECT_EQ([shared clientId], nil);
    EXPECT_EQ([shared init], shared);
    [shared setClientId:@"still"];
    EXPECT_EQ(fromCpp.clientId(), "still");
    // As by a subclass that fails before its superclass's `init`.
    OrvaneManager* const raw = [[OrvaneManager alloc] autorelease];
    EXPECT_EQ([raw clientId], nil);
    [raw setClientId:@"raw"];
    EXPECT_TRUE([[raw clientId] isEqual:@"raw"]);

    const Method getter = class_getInstanceMethod([OrvaneManager class], @selector(clientId));
    NSString* (*const replacement)(id, SEL) = [](id, SEL) { return @"replaced"; };
    // A direct cast to IMP makes compilers warn.
    const auto untyped = reinterpret_cast<void (*)()>(replacement);
    const IMP original = method_setImplementation(getter, reinterpret_cast<IMP>(untyped));
    EXPECT_EQ(fromCpp.clientId(), "replaced");
    method_setImplementation(getter, original);
    [shared setClientId:nil];
  }
}

TEST(ObjectRuntime, TheIdentifierIsACopyUnitForUnit) {
  @autoreleasepool {
    OrvaneManager* const manager = [[[OrvaneManager alloc] init] autorelease];
    [manager setClientId:[[[BrokenText alloc] init] autorelease]];
    EXPECT_EQ(unitsOf([manager clientId]), std::u16string({0xD83D, 0xD83D, 0xDE00, 0xDE00, 'a'}));
    NSMutableString* const changing = [NSMutableString stringWithString:@"a"];
    [manager setAppClientId:changing];
    [changing appendString:@"b"];
    EXPECT_TRUE([[manager clientId] isEqual:@"a"]);
    NSString* none = nil;
    [manager setAppClientId:none];
    EXPECT_TRUE([[manager clientId] isEqual:@""]);
  }
}

TEST(PlatformString, IsConvertedWithoutLoss) {
  @autoreleasepool {
    for (const std::string& text :
         {std::string(), std::string("a\0b", 3), std::string("é中\u07FF\u0800\uFFFF"),
          std::string("😀\U00010000\U0010FFFF")}) {
      NSData* const data = [NSData dataWithBytes:text.data() length:text.size()];
      NSString* const expected = [[[NSString alloc] initWithData:data
                                                        encoding:NSUTF8StringEncoding] autorelease];
      EXPECT_EQ(unitsOf(platformString(text)), unitsOf(expected));
      EXPECT_EQ(optionalUTF8(expected), text);
    }
    EXPECT_EQ(optionalUTF8(nil), std::nullopt);
    EXPECT_EQ(orvane::platformStringOrNil({}), nil);
    NSString* const broken = [[[BrokenText alloc] init] autorelease];
    EXPECT_EQ(unitsOf(platformString(utf8(broken))), u"\uFFFD😀\uFFFDa");
    EXPECT_EQ(unitsOf(platformString("\xFF\xED\xA0x\xF0\x9F\x98")), u"\uFFFD\uFFFD\uFFFDx\uFFFD\uFFFD\uFFFD");
  }
}

TEST(PlatformError, KeepsItsIdentityAndItsWords) {
  @autoreleasepool {
    NSDictionary* const words = @{@"reason" : @"why", @"object" : [NSNull null], @1 : @"what"};
    orvane::ErrorPtr carried;
    const void* identity = nullptr;
    @autoreleasepool {
      NSError* const error = [NSError errorWithDomain:@"d\U0001F600" code:-7 userInfo:words];
      identity = error;
      carried = orvane::makeError(error);
    }
    EXPECT_EQ(carried->domain, "d😀");
    EXPECT_EQ(carried->code, -7);
    ASSERT_EQ(carried->userInfo.size(), 1U);
    EXPECT_EQ(*carried->userInfo.at("reason").string(), "why");
    const auto inOwnWords =
        std::make_shared<const orvane::Error>(orvane::Error{"words", -1, {}, {}, carried});
    EXPECT_TRUE([[orvane::platformError(inOwnWords) localizedDescription] isEqual:@"words"]);
    NSError* const given = orvane::platformError(carried);
    EXPECT_EQ(given, identity);
    EXPECT_EQ([given code], -7);
    EXPECT_EQ(orvane::makeError(nil), nullptr);
    EXPECT_EQ(orvane::platformError(nullptr), nil);
  }
}

TEST(OVDeviceInfoTool, ReadsTheDevice) {
  const standins::Facts before = standins::facts();
  const Class tool = NSClassFromString(@"Orvane.OVDeviceInfoTool");
  standins::facts() = {.systemVersion = @"",
                       .model = @"iPad",
                       .identifierForVendor = @"E621E1F8-C36C-495A-93FC-0C247A3E6E5F",
                       .carrierName = @"",
                       .bounds = {667, 375},
                       .scale = 3};
  @autoreleasepool {
    EXPECT_EQ(utf8([tool getMEIDCode]), "E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
    EXPECT_EQ(utf8([tool getSystemName]), "iPad");
    EXPECT_EQ(utf8([tool getSystemVersion]), "iOS ");
    EXPECT_EQ(utf8([tool getcarrierName]), "");
    EXPECT_EQ(orvane::OVDeviceInfoTool().screenSize(), orvane::ScreenSize::Screen5_5Inch);
    standins::facts().carrierName = nil;
    EXPECT_EQ(utf8([tool getcarrierName]), "nil");
  }
  standins::facts() = before;
}

}  // namespace
