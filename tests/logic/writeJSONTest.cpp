#include <cmath>
#include <gtest/gtest.h>

#include "orvane/json/writeJSON.h"

namespace orvane::test {
namespace {

TEST(WriteJSON, WritesNothingThatIsNotJSON) {
  const double infinity = std::numeric_limits<double>::infinity();
  for (const Value& value :
       {Value(infinity), Value(-infinity), Value(std::nan("")), Value("\xFF"), Value("\xED\xA0\x80"),
        Value(Map{{"\xC0", 1}}), Value(Array{Array{1, "a\x80"}})}) {
    EXPECT_EQ(writeJSON(Array{value}), std::nullopt);
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
  EXPECT_EQ(writeJSON(copy)->size(), 400'004U);
}

}  // namespace
}  // namespace orvane::test
