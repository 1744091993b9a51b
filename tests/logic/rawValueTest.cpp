#include <gtest/gtest.h>

#include "orvane/device/DeviceName.h"
#include "orvane/device/ScreenSize.h"
#include "orvane/network/HTTPMethod.h"

namespace orvane::test {
namespace {

TEST(RawValue, IsTheNameOfTheCase) {
  EXPECT_EQ(rawValue(HTTPMethod::GET), "GET");
  EXPECT_EQ(rawValue(HTTPMethod::JSON_POST), "JSON_POST");
  EXPECT_EQ(fromRawValue<HTTPMethod>("POST"), HTTPMethod::POST);
  EXPECT_EQ(fromRawValue<HTTPMethod>("GET "), std::nullopt);
  EXPECT_EQ(hashValue(HTTPMethod::JSON_POST), 2U);
  EXPECT_EQ(hashValue(DeviceName::iPadMini2), 15U);
  EXPECT_EQ(hashValue(ScreenSize::Screen5_5Inch), 4U);
}

}  // namespace
}  // namespace orvane::test
