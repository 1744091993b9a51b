#include <cmath>
#include <gtest/gtest.h>

#include "orvane/json/writeJSON.h"

namespace orvane::test {
namespace {

TEST(WriteJSON, WritesNothingThatIsNotJSON) {
  const double infinity = std::numeric_limits<double>::infinity();
  const Value values[] = {
      infinity, -infinity, std::nan(""), "\xFF", "\xED\xA0\x80", Map{{"\xC0", 1}}, Array{Array{1, "a\x80"}}};
  for (const Value& value : values) EXPECT_EQ(writeJSON(Array{value}), std::nullopt) << &value - values;
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
