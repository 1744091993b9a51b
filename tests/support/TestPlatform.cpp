#include "tests/support/TestPlatform.h"

namespace orvane {
namespace test {
namespace {

/// Takes texts without blanks for URLs, and the letters of one foreign script for alphanumeric.
struct TestTextRules final : TextRules {
  bool isURL(std::string_view text) const override { return text.find(' ') == text.npos; }
  bool isAlphanumeric(char32_t codePoint) const override { return codePoint >= 0x4E00 && codePoint < 0xA000; }
};

/// Returns an object that is never destroyed, like the platform that refers to it.
template <class T>
const std::shared_ptr<T>& immortal() {
  static const auto* const object = new std::shared_ptr<T>(std::make_shared<T>());
  return *object;
}

}  // namespace

FakeSession& fakeSession() {
  return *immortal<FakeSession>();
}
MainQueue& fakeMainQueue() {
  return *immortal<MainQueue>();
}
TestReadings::Facts& fakeFacts() {
  return immortal<TestReadings>()->facts;
}

OnFakes::OnFakes() {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  fakeSession().reset();
  EXPECT_EQ(fakeMainQueue().runPending(), 0U);
  fakeFacts() = {};
}

}  // namespace test

Platform makeDefaultPlatform() {
  using namespace test;
  return {.sharedSession = immortal<FakeSession>(),
          .mainQueue = immortal<MainQueue>(),
          .globalQueue = immortal<MainQueue>(),
          .textRules = immortal<TestTextRules>(),
          .deviceReadings = immortal<TestReadings>()};
}

}  // namespace orvane
