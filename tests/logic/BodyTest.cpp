#include <gtest/gtest.h>

#include "orvane/platform/Body.h"

namespace orvane::test {
namespace {

TEST(Body, KeepsItsBytesOrTheirOwner) {
  const auto foreign = std::make_shared<const Bytes>(Bytes{1, 2, 3});
  Body lent(*foreign, foreign);
  Body own(Bytes{4, 5});
  for (Body* const body : {&lent, &own}) {
    const Bytes bytes(body->begin(), body->end());
    const Body copy = *body;
    const std::uint8_t* const place = body->data();
    Body moved = std::move(*body);
    EXPECT_EQ(moved.data(), place);
    EXPECT_TRUE(!moved.empty() && body->empty() && body->begin() == body->end());
    moved = Body();
    EXPECT_EQ(Bytes(copy.begin(), copy.end()), bytes);
    EXPECT_EQ(copy.data() == place, body == &lent);
  }
  EXPECT_EQ(foreign.use_count(), 1);
  EXPECT_TRUE(Body(*foreign, nullptr).empty());
}

}  // namespace
}  // namespace orvane::test
