#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

#include "orvane/json/writeJSON.h"
#include "tests/support/asText.h"

namespace orvane::test {
namespace {

std::string written(const Value& value) {
  return asText(writeJSON(value));
}

TEST(WriteJSON, WritesRealsLikeTheStandardLibrary) {
  const auto expected = [](double real, auto... form) {
    std::array<char, 64> text;
    return std::string(text.data(), std::to_chars(text.data(), text.data() + text.size(), real, form...).ptr);
  };
  std::mt19937_64 random(11);
  for (std::uint64_t round = 0; round < 40'000; ++round) {
    // Random bits, numbers near powers of two, integers of any size, few digits before or after the point.
    const std::uint64_t bits = random();
    for (const double real :
         {std::bit_cast<double>(bits), std::bit_cast<double>((round << 52) + bits % 5 - 2),
          static_cast<double>(bits >> bits % 64) * 1000,
          static_cast<double>(bits % 10'000) / std::pow(10, round % 9)}) {
      if (!std::isfinite(real)) continue;
      ASSERT_EQ(written(real), expected(real));
      ASSERT_EQ(Value(real).decimalText(), expected(real, std::chars_format::general, 16));
    }
  }
}

TEST(WriteJSON, WritesNothingThatIsNotJSON) {
  const double infinity = std::numeric_limits<double>::infinity();
  for (const Value& value :
       {Value(infinity), Value(-infinity), Value(std::nan("")), Value("\xFF"), Value("\xED\xA0\x80"),
        Value(Map{{"\xC0", 1}}), Value(Array{Array{1, "a\x80"}})}) {
    EXPECT_EQ(written(Array{value}), "none");
  }
}

TEST(WriteJSON, WritesAnyDepth) {
  Value deep;
  for (int depth = 0; depth < 200'000; ++depth) {
    Array outer;
    outer.push_back(std::move(deep));
    deep = std::move(outer);
  }
  const Value copy = deep;
  EXPECT_EQ(written(copy).size(), 400'004U);
}

}  // namespace
}  // namespace orvane::test
