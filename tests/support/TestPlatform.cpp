#include "tests/support/TestPlatform.h"

namespace orvane {
namespace test {
namespace {

/// Refuses blanks, and takes the letters of one foreign script for such: as much as the logic needs to know.
struct TestTextRules final : TextRules {
  bool isURL(std::string_view text) const override { return text.find(' ') == text.npos; }
  bool isAlphanumeric(char32_t codePoint) const override { return codePoint >= 0x4E00 && codePoint < 0xA000; }
};

/// Never destroyed, like the platform that refers to it.
template <class T>
const std::shared_ptr<T>& immortal() {
  static const auto* const object = new std::shared_ptr<T>(std::make_shared<T>());
  return *object;
}

}  // namespace

FakeSession& fakeSession() {
  return *immortal<FakeSession>();
}
ManualQueue& fakeMainQueue() {
  return *immortal<ManualQueue>();
}
TestReadings& fakeReadings() {
  return *immortal<TestReadings>();
}

}  // namespace test

Platform makeDefaultPlatform() {
  using namespace test;
  return {.sharedSession = immortal<FakeSession>(),
          .mainQueue = immortal<ManualQueue>(),
          .globalQueue = immortal<ManualQueue>(),
          .textRules = immortal<TestTextRules>(),
          .deviceReadings = immortal<TestReadings>()};
}

}  // namespace orvane
