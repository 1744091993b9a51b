#include <gtest/gtest.h>

#include "orvane/device/DeviceName.h"
#include "orvane/network/HTTPMethod.h"

namespace orvane::test {
namespace {

TEST(HTTPMethod, HasTextRawValues) {
  using enum HTTPMethod;
  for (const auto& [method, name] : {std::pair(GET, "GET"), {POST, "POST"}, {JSON_POST, "JSON_POST"}}) {
    EXPECT_EQ(rawValue(method), name);
    EXPECT_EQ(fromRawValue<HTTPMethod>(name), method);
  }
  for (const char* other : {"post", "PUT", "", "GET "})
    EXPECT_EQ(fromRawValue<HTTPMethod>(other), std::nullopt);
  EXPECT_EQ(hashValue(GET), 0U);
  EXPECT_EQ(hashValue(JSON_POST), 2U);
}

TEST(DeviceName, NamesAndNumbersOfModels) {
  EXPECT_EQ(hashValue(DeviceName::iPadMini), 11U);
  EXPECT_EQ(hashValue(DeviceName::iPadMini2), 15U);
  EXPECT_EQ(hashValue(DeviceName::Unknown), 27U);
  EXPECT_EQ(rawValue(DeviceName::Unknown), "Unknown");
  for (const std::string_view name : deviceNames) EXPECT_EQ(rawValue(*fromRawValue<DeviceName>(name)), name);
  for (const char* other : {"", "ipadmini2", "iPhone", "Unknown "})
    EXPECT_FALSE(fromRawValue<DeviceName>(other));
}

}  // namespace
}  // namespace orvane::test
