#include <gtest/gtest.h>

#include "orvane/base/decodeUTF8.h"

namespace orvane::test {
namespace {

TEST(DecodeUTF8, ReadsTheFirstAndTheLastCodePointOfEachLength) {
  const std::pair<const char*, char32_t> rows[] = {{"\x01", 0x01},
                                                   {"\x7F", 0x7F},
                                                   {"\xC2\x80", 0x80},
                                                   {"\xDF\xBF", 0x7FF},
                                                   {"\xE0\xA0\x80", 0x800},
                                                   {"\xED\x9F\xBF", 0xD7FF},
                                                   {"\xEE\x80\x80", 0xE000},
                                                   {"\xEF\xBF\xBF", 0xFFFF},
                                                   {"\xF0\x90\x80\x80", 0x10000},
                                                   {"\xF4\x8F\xBF\xBF", 0x10FFFF}};
  for (const auto& [bytes, codePoint] : rows) {
    const std::string text = std::string("a") + bytes + "b";
    std::size_t position = 1;
    EXPECT_EQ(decodeUTF8(text, position), codePoint);
    EXPECT_EQ(position, text.size() - 1);
    std::string written;
    appendUTF8(written, codePoint);
    EXPECT_EQ(written, bytes);
  }
}

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
