// The classes as the object runtime and its callers see them.

#import <Orvane/Orvane.h>
#include <gtest/gtest.h>
#import <objc/runtime.h>

#include "adapters/apple/AppleTextRules.h"
#import "orvane/apple/AppleError.h"
#include "orvane/orvane.h"
#include "tests/apple/send.h"
#include "tests/apple/standins/standins.h"

@implementation BrokenText
- (NSUInteger)length {
  return 5;
}
- (unichar)characterAtIndex:(NSUInteger)index {
  constexpr unichar units[] = {0xD83D, 0xD83D, 0xDE00, 0xDE00, 'a'};
  return units[index];
}
@end

namespace {

using orvane::test::classNamed;
using orvane::test::send;

/// The types of a method's result and arguments, without their places.
std::string typesOf(Method method) {
  std::string types;
  const auto append = [&](char* type) {
    types.append(type, strcspn(type, "0123456789"));
    free(type);
  };
  append(method_copyReturnType(method));
  for (unsigned i = 2; i < method_getNumberOfArguments(method); ++i)
    append(method_copyArgumentType(method, i));
  return types;
}

/// Unit for unit, where strings might be equal by their meaning.
std::u16string unitsOf(NSString* text) {
  std::u16string units;
  for (NSUInteger at = 0; at < [text length]; ++at) units.push_back([text characterAtIndex:at]);
  return units;
}

TEST(ObjectRuntime, AnswersTheSelectorsAtTheirLevels) {
  struct Row {
    const char* type;
    char level;
    const char* selector;
    const char* types;
  };
  for (const Row& row : {Row{"OrvaneManager", '+', "shareManager", "@"},
                         {"OrvaneManager", '-', "init", "@"},
                         {"OrvaneManager", '-', "clientId", "@"},
                         {"OrvaneManager", '-', "setClientId:", "v@"},
                         {"OrvaneManager", '-', "setAppClientId:", "v@"},
                         {"OrvaneManager", '-', "requestPictureCode:finished:", "v@@?"},
                         {"OrvaneManager", '-', "requestCode:codeNumber:finished:", "v@@@?"},
                         {"OrvaneManager", '-', "requestLogin:code:finished:", "v@@@?"},
                         {"OVDeviceInfoTool", '+', "getMEIDCode", "@"},
                         {"OVDeviceInfoTool", '+', "getSystemName", "@"},
                         {"OVDeviceInfoTool", '+', "getSystemVersion", "@"},
                         {"OVDeviceInfoTool", '+', "getcarrierName", "@"},
                         {"OVDeviceInfoTool", '-', "init", "@"},
                         {"OVSession", '+', "useSession:failureMessage:", "v@@"},
                         {"OVSession", '+', "useSession:failureMessage:encrypted:", "v@@C"},
                         {"OVDeviceInfoTool", ' ', "getDeviceName", nullptr},
                         {"OVDeviceInfoTool", ' ', "screenSize", nullptr}}) {
    for (const std::string& name : {std::string(row.type), std::string("Orvane.").append(row.type)}) {
      const Class type = classNamed(name.c_str());
      ASSERT_TRUE(type != Nil) << name;
      EXPECT_TRUE([type isSubclassOfClass:[NSObject class]]) << name;
      for (const char level : {'+', '-'}) {
        const SEL selector = sel_registerName(row.selector);
        const Method method =
            level == '+' ? class_getClassMethod(type, selector) : class_getInstanceMethod(type, selector);
        // The root class answers its instances' selectors at both levels.
        if (level != row.level && std::string_view(row.selector) == "init") continue;
        ASSERT_EQ(method != nullptr, level == row.level) << level << name << " " << row.selector;
        if (method) EXPECT_EQ(typesOf(method), row.types) << row.selector;
      }
    }
  }
}

TEST(ObjectRuntime, SharesOneManagerAndMakesOthers) {
  @autoreleasepool {
    OrvaneManager* const shared = send<id>(classNamed("OrvaneManager"), "shareManager");
    EXPECT_EQ(send<OrvaneManager*>(classNamed("Orvane.OrvaneManager"), "shareManager"), shared);
    EXPECT_TRUE([shared isMemberOfClass:[OrvaneManager class]]);
    OrvaneManager* const own = [[[OrvaneManager alloc] init] autorelease];
    EXPECT_NE(own, shared);
    [shared setClientId:@"shared"];
    EXPECT_EQ([own clientId], nil);
    [own setAppClientId:@"own"];
    EXPECT_TRUE([[shared clientId] isEqual:@"shared"]);
    EXPECT_EQ(orvane::OrvaneManager::shareManager().clientId(), "shared");
    orvane::OrvaneManager::shareManager().setClientId({});
    EXPECT_EQ([shared clientId], nil);
    EXPECT_EQ([shared init], shared);
    [shared setClientId:@"still"];
    EXPECT_EQ(orvane::OrvaneManager::shareManager().clientId(), "still");
    // As by a subclass that fails before its superclass's `init`.
    OrvaneManager* const raw = [[OrvaneManager alloc] autorelease];
    EXPECT_EQ([raw clientId], nil);
    [raw setClientId:@"raw"];
    EXPECT_TRUE([[raw clientId] isEqual:@"raw"]);

    const Method getter = class_getInstanceMethod([OrvaneManager class], @selector(clientId));
    NSString* (*const replacement)(id, SEL) = [](id, SEL) { return @"replaced"; };
    // By way of `void (*)()`, or compilers warn.
    const auto untyped = reinterpret_cast<void (*)()>(replacement);
    const IMP original = method_setImplementation(getter, reinterpret_cast<IMP>(untyped));
    EXPECT_EQ(orvane::OrvaneManager::shareManager().clientId(), "replaced");
    method_setImplementation(getter, original);
    [shared setClientId:nil];
  }
}

TEST(ObjectRuntime, ConvertsTextWithoutLoss) {
  @autoreleasepool {
    OrvaneManager* const manager = [[[OrvaneManager alloc] init] autorelease];
    for (const std::u16string& units :
         {std::u16string(), std::u16string(u"a\0b", 3), std::u16string(u"é中\u07FF\u0800\uFFFF"),
          std::u16string(u"😀\U00010000\U0010FFFF")}) {
      NSString* const text = [NSString stringWithCharacters:reinterpret_cast<const unichar*>(units.data())
                                                     length:units.size()];
      [manager setClientId:text];
      EXPECT_EQ(unitsOf([manager clientId]), units);
      [manager setClientId:nil];
      EXPECT_EQ([manager clientId], nil);
      [manager setAppClientId:text];
      EXPECT_EQ(unitsOf([manager clientId]), units);
    }
    [manager setClientId:[[[BrokenText alloc] init] autorelease]];
    EXPECT_EQ(unitsOf([manager clientId]), std::u16string({0xD83D, 0xD83D, 0xDE00, 0xDE00, 'a'}));

    NSMutableString* const changing = [NSMutableString stringWithString:@"a"];
    [manager setClientId:changing];
    [changing appendString:@"b"];
    EXPECT_TRUE([[manager clientId] isEqual:@"a"]);
    orvane::OrvaneManager::shareManager().setClientId("\xFF\xED\xA0x\xF0\x9F\x98");
    EXPECT_TRUE([[[OrvaneManager shareManager] clientId] isEqual:@"\uFFFD\uFFFD\uFFFDx\uFFFD\uFFFD\uFFFD"]);
  }
}

TEST(ObjectRuntime, ErrorsKeepTheirIdentityAndTheirWords) {
  @autoreleasepool {
    NSDictionary* const words = [NSDictionary
        dictionaryWithObjectsAndKeys:@"why", @"reason", [NSNull null], @"object", @"what", @1, nil];
    NSError* const error = [NSError errorWithDomain:@"d\U0001F600" code:-7 userInfo:words];
    const orvane::ErrorPtr carried = orvane::makeError(error);
    EXPECT_EQ(orvane::platformError(carried), error);
    EXPECT_EQ(carried->domain, "d😀");
    EXPECT_EQ(carried->code, -7);
    ASSERT_EQ(carried->userInfo.size(), 1U);
    EXPECT_EQ(*carried->userInfo.at("reason").text(), "why");
    EXPECT_EQ(orvane::makeError(nil), nullptr);
    EXPECT_EQ(orvane::platformError(nullptr), nil);

    orvane::ErrorPtr last;
    @autoreleasepool {
      last = orvane::makeError([NSError errorWithDomain:[words description] code:0 userInfo:nil]);
    }
    NSError* const given = orvane::platformError(std::exchange(last, nullptr));
    EXPECT_TRUE([[given domain] isEqual:[words description]]);

    NSError* const made = orvane::platformError(std::make_shared<const orvane::Error>(
        orvane::Error{"", std::numeric_limits<int>::min(), {{"error", "建"}, {"n", 1}}}));
    EXPECT_TRUE([[made domain] isEqual:@""]);
    EXPECT_EQ([made code], std::numeric_limits<int>::min());
    EXPECT_TRUE([[made userInfo] isEqual:@{@"error" : @"建"}]);
  }
}

TEST(ObjectRuntime, TellsWhatTheDeviceSays) {
  const standins::Facts before = standins::facts();
  const auto answer = [](const char* selector) {
    @autoreleasepool {
      return std::string([send<NSString*>(classNamed("Orvane.OVDeviceInfoTool"), selector) UTF8String]);
    }
  };
  standins::facts() = {.systemVersion = "",
                       .model = "iPad",
                       .identifierForVendor = "E621E1F8-C36C-495A-93FC-0C247A3E6E5F",
                       .carrierName = "",
                       .bounds = {667, 375},
                       .scale = 3};
  EXPECT_EQ(answer("getMEIDCode"), "E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
  EXPECT_EQ(answer("getSystemName"), "iPad");
  EXPECT_EQ(answer("getSystemVersion"), "iOS ");
  EXPECT_EQ(answer("getcarrierName"), "");
  EXPECT_EQ(orvane::OVDeviceInfoTool().screenSize(), orvane::ScreenSize::Screen5_5Inch);
  standins::facts().carrierName = {};
  EXPECT_EQ(answer("getcarrierName"), "nil");
  standins::facts().carrierName = "there";
  standins::facts().hasCarrier = false;
  EXPECT_EQ(answer("getcarrierName"), "nil");
  standins::facts().scale = 2;
  EXPECT_EQ(orvane::OVDeviceInfoTool().screenSize(), orvane::ScreenSize::Screen4_7Inch);
  standins::facts() = before;
}

TEST(AppleTextRules, AskThePlatform) {
  const orvane::AppleTextRules rules;
  for (const char* url : {"", "http://h:80/p?q#f", "/p", "http://[::1]/", "http://h/%20"})
    EXPECT_TRUE(rules.isURL(url)) << url;
  for (const char* other : {"http://h:8x/", "\xFF"}) EXPECT_FALSE(rules.isURL(other)) << other;
  for (const char32_t c : {U'a', U'é', U'中', U'\u0301', U'٣', U'\U00010400'})
    EXPECT_TRUE(rules.isAlphanumeric(c)) << static_cast<unsigned>(c);
  for (const char32_t c : {U' ', U'€', U'😀', U'\0', U'\U0010FFFF'})
    EXPECT_FALSE(rules.isAlphanumeric(c)) << static_cast<unsigned>(c);
}

}  // namespace
