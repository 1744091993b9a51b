#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

#include "orvane/device/OVDeviceInfoTool.h"
#include "orvane/version/Orvane_vers.h"
#include "tests/support/TestPlatform.h"

namespace orvane::test {
namespace {

class OVDeviceInfoToolTest : public OnFakes {
 protected:
  TestReadings::Facts& facts = fakeFacts();
};

TEST_F(OVDeviceInfoToolTest, MachineIdentifiersNameModels) {
  // The identifiers of a model are a prefix and each number from `first` to `last`.
  const std::tuple<const char*, int, int, const char*> rows[] = {
      {"iPhone3,", 1, 3, "iPhone4"},      {"iPhone4,", 1, 3, "iPhone4S"},
      {"iPhone5,", 1, 2, "iPhone5"},      {"iPhone5,", 3, 4, "iPhone5C"},
      {"iPhone6,", 1, 2, "iPhone5S"},     {"iPhone7,", 2, 2, "iPhone6"},
      {"iPhone7,", 1, 1, "iPhone6Plus"},  {"iPhone8,", 1, 1, "iPhone6S"},
      {"iPhone8,", 2, 2, "iPhone6SPlus"}, {"iPad1,", 1, 1, "iPad1"},
      {"iPad2,", 1, 4, "iPad2"},          {"iPad2,", 5, 7, "iPadMini"},
      {"iPad3,", 1, 3, "iPad3"},          {"iPad3,", 4, 6, "iPad4"},
      {"iPad4,", 1, 3, "iPadAir"},        {"iPad4,", 4, 6, "iPadMini2"},
      {"iPad4,", 7, 9, "iPadMini3"},      {"iPad5,", 3, 4, "iPadAir2"},
      {"iPad5,", 1, 2, "iPadMini4"},      {"iPad6,", 8, 8, "iPadPro"},
      {"iPod1,", 1, 1, "iPodTouch1Gen"},  {"iPod2,", 1, 1, "iPodTouch2Gen"},
      {"iPod3,", 1, 1, "iPodTouch3Gen"},  {"iPod4,", 1, 1, "iPodTouch4Gen"},
      {"iPod5,", 1, 1, "iPodTouch5Gen"},  {"iPod7,", 1, 1, "iPodTouch6Gen"},
      {"i38", 6, 6, "Simulator"},         {"x86_6", 4, 4, "Simulator"}};
  for (const auto& [prefix, first, last, name] : rows) {
    EXPECT_EQ(rawValue(*fromRawValue<DeviceName>(name)), name);
    for (int number = first; number <= last; ++number) {
      facts.machine = prefix + std::to_string(number) + std::string(7, '\0');
      EXPECT_EQ(rawValue(OVDeviceInfoTool::getDeviceName()), name) << prefix << number;
    }
  }
  for (const char* other :
       {"", "iPad6,7", "iPad6,3", "iPhone8,4", "iPhone9,1", "iPod6,1", "iPhone3,4", "iPad5,5", "iphone8,1",
        "iPhone8,1 ", "iPhone8,1\x7F", "iPhone8", "iPhone8,12", "X86_64", "aarch64"}) {
    facts.machine = other;
    EXPECT_EQ(OVDeviceInfoTool::getDeviceName(), DeviceName::Unknown) << other;
    EXPECT_EQ(fromRawValue<DeviceName>(other), std::nullopt) << other;
  }
  EXPECT_EQ(hashValue(DeviceName::Unknown), std::size(rows) - 1);
}

TEST_F(OVDeviceInfoToolTest, AMachineIdentifierThatIsNotASCIIStopsTheProcess) {
  using namespace std::string_literals;
  for (const std::string& machine : {"iPad6,8\0\xFF"s, "\x80"s}) {
    facts.machine = machine;
    EXPECT_DEATH(OVDeviceInfoTool::getDeviceName(),
                 "^orvane: getDeviceName: the machine identifier is not ASCII\n$");
  }
}

TEST_F(OVDeviceInfoToolTest, FactsAsTexts) {
  EXPECT_EQ(OVDeviceInfoTool::getSystemName(), "word");
  EXPECT_EQ(OVDeviceInfoTool::getSystemVersion(), "iOS 9.3.1");
  EXPECT_EQ(OVDeviceInfoTool::getcarrierName(), "nil");
  EXPECT_DEATH(OVDeviceInfoTool::getMEIDCode(),
               "^orvane: getMEIDCode: the device gives no vendor identifier\n$");
  facts.version = "";
  facts.carrier = "";
  facts.vendor = "AB-1";
  EXPECT_EQ(OVDeviceInfoTool::getSystemVersion(), "iOS ");
  EXPECT_EQ(OVDeviceInfoTool::getcarrierName(), "");
  EXPECT_EQ(OVDeviceInfoTool::getMEIDCode(), "AB-1");
}

TEST_F(OVDeviceInfoToolTest, ClassifiesScreens) {
  using enum ScreenSize;
  const double nan = std::nan("");
  const std::tuple<double, double, double, ScreenSize> rows[] = {
      {320, 480, 2, Screen3_5Inch},    {480, 320, 1, Screen3_5Inch},   {480, 480, 2, Screen3_5Inch},
      {320, 568, 2, Screen3_5Inch},    {375, 667, 2, Screen4_7Inch},   {375, 667, 3, Screen5_5Inch},
      {667, 375, 2.9, Screen4_7Inch},  {375, 667, nan, Screen4_7Inch}, {414, 736, 3, Screen5_5Inch},
      {736, 414, 1, Screen5_5Inch},    {768, 1024, 2, UnknownSize},    {375, 667.5, 3, UnknownSize},
      {414, 736.0001, 3, UnknownSize}, {0, 0, 1, UnknownSize},         {320, nan, 2, UnknownSize}};
  for (const auto& [width, height, scale, size] : rows) {
    facts = {.bounds = {width, height}, .scale = scale};
    EXPECT_EQ(OVDeviceInfoTool().screenSize(), size) << width << " x " << height << " at " << scale;
    EXPECT_EQ(facts.scaleReads, std::max(width, height) == 667 ? 1 : 0);
  }
}

TEST(OrvaneVersion, IsThatOfTheInterface) {
  EXPECT_EQ(OrvaneVersionNumber, 1.0);
  EXPECT_STREQ(reinterpret_cast<const char*>(OrvaneVersionString), "@(#)PROGRAM:Orvane  PROJECT:Orvane-1\n");
}

}  // namespace
}  // namespace orvane::test
