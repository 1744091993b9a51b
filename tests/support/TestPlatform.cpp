#include "tests/support/TestPlatform.h"

namespace orvane {
namespace test {
namespace {

/// Passes everything on to the session of the current test.
struct SessionOfTest final : URLSession {
  void startDataTask(URLRequest request, DataTaskHandler handler) override {
    current->startDataTask(std::move(request), std::move(handler));
  }
  void cancelAllOperations() override { current->cancelAllOperations(); }

  std::unique_ptr<FakeSession> current = std::make_unique<FakeSession>();
};

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
  return *immortal<SessionOfTest>()->current;
}
MainQueue& fakeMainQueue() {
  return *immortal<MainQueue>();
}
TestReadings::Facts& fakeFacts() {
  return immortal<TestReadings>()->facts;
}

OnFakes::OnFakes() {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  immortal<SessionOfTest>()->current = std::make_unique<FakeSession>();
  EXPECT_EQ(fakeMainQueue().runPending(), 0U);
  fakeFacts() = {};
}

}  // namespace test

Platform makeDefaultPlatform() {
  using namespace test;
  return {.sharedSession = immortal<SessionOfTest>(),
          .mainQueue = immortal<MainQueue>(),
          .globalQueue = immortal<MainQueue>(),
          .textRules = immortal<TestTextRules>(),
          .deviceReadings = immortal<TestReadings>()};
}

}  // namespace orvane
