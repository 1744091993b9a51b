#include <gtest/gtest.h>

#include "orvane/device/DeviceName.h"
#include "orvane/device/ScreenSize.h"
#include "orvane/network/HTTPMethod.h"

namespace orvane::test {
namespace {

/// The case's raw value and position; "none" where the text is not a raw value.
template <class E>
std::string found(std::string_view text) {
  const std::optional<E> value = fromRawValue<E>(text);
  return value ? std::string(rawValue(*value)) + " " + std::to_string(hashValue(*value)) : "none";
}

TEST(RawValue, IsTheCasesName) {
  EXPECT_EQ(rawValue(HTTPMethod::GET), "GET");
  EXPECT_EQ(rawValue(HTTPMethod::POST), "POST");
  EXPECT_EQ(found<HTTPMethod>("JSON_POST"), "JSON_POST 2");
  EXPECT_EQ(found<DeviceName>("iPadMini"), "iPadMini 11");
  EXPECT_EQ(found<DeviceName>("iPadMini2"), "iPadMini2 15");
  EXPECT_EQ(found<DeviceName>("Unknown"), "Unknown 27");
  EXPECT_EQ(rawValue(DeviceName::Unknown), "Unknown");
  EXPECT_EQ(hashValue(ScreenSize::Screen5_5Inch), 4U);
  for (const char* other : {"post", "PUT", "", "GET ", "ipadmini2", "iPhone"})
    EXPECT_EQ(found<HTTPMethod>(other) + found<DeviceName>(other), "nonenone");
}

}  // namespace
}  // namespace orvane::test
