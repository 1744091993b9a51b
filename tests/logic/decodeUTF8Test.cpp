#include <gtest/gtest.h>

#include "orvane/base/decodeUTF8.h"

namespace orvane::test {
namespace {

TEST(DecodeUTF8, RefusesWhatIsNotWellFormed) {
  const std::pair<const char*, std::vector<const char*>> groups[] = {
      {"cut short", {"", "\xC3", "\xE4\xB8", "\xF0\x9F\x98", "\xC3x", "\xE4\xB8x", "\xE4\xB8\xC0"}},
      {"no first byte", {"\x80", "\xBF", "\xF8\x90\x80\x80", "\xFF\x90\x80\x80"}},
      {"overlong", {"\xC0\xAF", "\xC1\xBF", "\xE0\x80\x80", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF"}},
      {"surrogates", {"\xED\xA0\x80", "\xED\xBF\xBF"}},
      {"above U+10FFFF", {"\xF4\x90\x80\x80", "\xF5\x80\x80\x80"}}};
  for (const auto& [name, texts] : groups) {
    for (const char* text : texts) {
      std::size_t position = 0;
      EXPECT_EQ(decodeUTF8(text, position), std::nullopt) << name << ": " << text;
      EXPECT_EQ(position, 0U);
    }
  }
}

}  // namespace
}  // namespace orvane::test
