#include <cmath>
#include <gtest/gtest.h>

#include "orvane/base/Value.h"

namespace orvane::test {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr auto least = std::numeric_limits<std::int64_t>::min();
constexpr auto greatest = std::numeric_limits<std::int64_t>::max();

TEST(Value, ReadsNumbersAsIntegersAndAsText) {
  const std::tuple<Value, std::optional<std::int64_t>, std::optional<std::string>> rows[] = {
      {137, 137, "137"},
      {greatest, greatest, "9223372036854775807"},
      {137.0, 137, "137"},
      {12.5, 12, "12.5"},
      {-12.5, -12, "-12.5"},
      {-0.0, 0, "-0"},
      {0.1, 0, "0.1"},
      {1e300, greatest, "1e+300"},
      {-1e300, least, "-1e+300"},
      {9223372036854775808.0, greatest, "9.223372036854776e+18"},
      {-9223372036854775808.0, least, "-9.223372036854776e+18"},
      {UINT64_MAX, greatest, "1.844674407370955e+19"},
      {infinity, greatest, "inf"},
      {-infinity, least, "-inf"},
      {std::nan(""), 0, "nan"},
      {true, std::nullopt, std::nullopt},
      {"7", std::nullopt, std::nullopt},
      {nullptr, std::nullopt, std::nullopt},
      {Array{7}, std::nullopt, std::nullopt}};
  for (const auto& row : rows) {
    SCOPED_TRACE(&row - rows);
    const auto& [value, integer, text] = row;
    EXPECT_EQ(value.numberAsInteger(), integer);
    EXPECT_EQ(value.numberAsString(), text);
  }
}

TEST(Value, PacksBytesUntilSomethingElseComes) {
  Array array;
  for (int i = 0; i < 256; ++i) array.push_back(i);
  ASSERT_TRUE(array.bytes());
  EXPECT_EQ(array.bytes()->size(), 256U);
  for (const Value& other : {Value(256), Value(-1), Value(1.0), Value(true), Value("1"), Value()}) {
    Array unpacked = array;
    unpacked.push_back(other);
    unpacked.push_back(5);
    EXPECT_FALSE(unpacked.bytes());
    ASSERT_EQ(unpacked.size(), 258U);
    EXPECT_EQ(*unpacked[255].integer(), 255);
    EXPECT_EQ(*unpacked[257].integer(), 5);
  }
  auto place = array.begin();
  EXPECT_EQ(*(*place++).integer(), 0);
  EXPECT_EQ(*(*place).integer(), 1);
  EXPECT_EQ(std::distance(++place, array.end()), 254);
}

TEST(Value, CopiesAreIndependent) {
  const Value original = Map{{"list", Array{1, Array{"a", Map{{"k", 2.5}}}}}, {"text", "t"}};
  Value copy = original;
  copy.map()->at("list").array()->push_back(3);
  *copy.map()->at("text").string() = "changed";
  EXPECT_EQ(original.map()->at("list").array()->size(), 2U);
  EXPECT_EQ(*original.map()->at("text").string(), "t");
  Array nested = {Array{7, 8}, "x"};
  nested = *nested[0].array();
  EXPECT_EQ(nested.size(), 2U);
  const Array& inner = *(*copy.map()->at("list").array())[1].array();
  EXPECT_EQ(*inner[1].map()->at("k").floating(), 2.5);
  copy = 1;  // Releases the map: the leak sanitizer looks.
  EXPECT_EQ(*copy.integer(), 1);
}

}  // namespace
}  // namespace orvane::test
