#include <gtest/gtest.h>
#include <random>

#include "orvane/json/readJSON.h"
#include "orvane/json/writeJSON.h"
#include "tests/support/asText.h"

namespace orvane::test {
namespace {

using namespace std::string_literals;

/// Reads from memory of exactly the text's size, so that a sanitizer sees a read beyond it. Returns the value
/// as writeJSON writes it.
std::string reread(std::string_view text) {
  const std::optional<Value> value = readJSON(Bytes(text.begin(), text.end()));
  return value ? asText(writeJSON(*value)) : "error";
}

std::string nested(std::size_t depth) {
  return std::string(depth, '[') + std::string(depth, ']');
}

TEST(ReadJSON, ReadsWhatItShould) {
  const std::pair<std::string, std::string> rows[] = {
      {"\xEF\xBB\xBF{}", "{}"},
      {" \t\r\n[ 1 , 2 ] \n", "[1,2]"},
      {"[0,9,10,99,100,255,256,-1]", "[0,9,10,99,100,255,256,-1]"},
      {"[1,{},[2],[{}]]", "[1,{},[2],[{}]]"},
      {R"({"b":1,"a":{"c":[true,false,null]},"b":2})", R"({"a":{"c":[true,false,null]},"b":1})"},
      {R"({"a":1,"a":{"a":[{"a":[]}]},"b":3})", R"({"a":1,"b":3})"},
      {R"(["\"\\\/\b\f\n\r\t\u0041\u00e9a\u4E2d\u0000\u001f"])",
       "[\"\\\"\\\\/\\b\\f\\n\\r\\tAéa中\\u0000\\u001f\"]"},
      // The first and the last code point of each length, and of those around the surrogates.
      {R"(["\u007f\u0080\u07ff\u0800\ud7ff\ue000\uffff\ud800\udc00\udbff\udfff"])",
       "[\"\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF"
       "\xBF\"]"},
      {"[9007199254740993,-9007199254740993]", "[9007199254740993,-9007199254740993]"},
      {"[-0,0,9223372036854775807,-9223372036854775808]", "[0,0,9223372036854775807,-9223372036854775808]"},
      {"[9223372036854775808]", "[9.223372036854776e+18]"},
      {"[1.5,-0.25,1e2,1E+2,25e-1,1e-400]", "[1.5,-0.25,100,100,2.5,0]"},
      {"[0.1,1.7976931348623157e308,5e-324]", "[0.1,1.7976931348623157e+308,4.94065645841247e-324]"},
      {"[123456789012345678901234567890123456789012345678901234567890e-59]", "[1.2345678901234567]"},
      {"[0e99999999999999999999,1e-99999999999999999999,1.5e-9223372036854775808]", "[0,0,0]"}};
  for (const auto& [text, expected] : rows) {
    EXPECT_EQ(reread(text), expected) << text;
    EXPECT_EQ(reread(expected), expected);
  }
}

TEST(ReadJSON, RefusesAllElse) {
  const std::pair<const char*, std::vector<std::string>> groups[] = {
      {"neither a map nor an array",
       {"", " ", "\xEF\xBB\xBF", "1", "\"a\"", "true", "null", "]", "}", "// \n[]", "[1]\xEF\xBB\xBF",
        "\xFF\xFE[\0]\0"s, "[]\0"s, "[1]x", "[]]"}},
      {"maps",
       {"{", "{,}", "{1:2}", "{\"a\"}", "{\"a\":}", "{\"a\":1,}", "{\"a\" 1}", "{\"a\":1 \"b\":2}",
        "{\"a\":1,\"a\":x}"}},
      {"arrays",
       {"[", "[1", "[1,", "[1,]", "[,1]", "[1 2]", "[255,256", "[abcd,1,x", "[0,12345,6", "[2555,]",
        "[\0]"s}},
      {"numbers and words",
       {"[01]", "[-]", "[+1]", "[.5]", "[1.]", "[1e]", "[1e+]", "[0x1]", "[00]", "[-01]", "[1e400]",
        "[-1e309]", "[1.797693134862315808e308]", "[NaN]", "[Infinity]", "[tru]", "[True]", "[nul]",
        "[1e9223372036854775807]"}},
      {"escapes",
       {"['a']", "[\"]", "[\"\\]", "[\"\\", "[\"\\x\"]", "[\"\\u12", "[\"\\u12\"]", "[\"\\u12g4\"]",
        "[\"\\u+123\"]"}},
      {"surrogates",
       {"[\"\\ud800\"]", "[\"\\udc00\"]", "[\"\\udfff\"]", "[\"\\ud800\\u0041\"]", "[\"\\ud800\\ud800\"]",
        "[\"\\ud800\\ue000\"]"}},
      {"control characters", {"[\"\n\"]", "[\"\t\"]", "[\"\x1F\"]", "[\"\0\"]"s}}};
  for (const auto& [name, texts] : groups) {
    for (const std::string& text : texts) EXPECT_EQ(reread(text), "error") << name << ": " << text;
  }
}

TEST(ReadJSON, RefusesWhatIsNotUTF8) {
  const std::pair<const char*, std::vector<std::string>> groups[] = {
      {"cut short", {"\xC3 ", "\xE4\xB8x", "\xE4\xB8\xC0", "\xF0\x9F\x98 "}},
      {"no first byte", {"\x80", "\xBF", "\xF8\x90\x80\x80", "\xFF\x90\x80\x80"}},
      {"overlong", {"\xC0\xAF", "\xC1\xBF", "\xE0\x80\x80", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF"}},
      {"surrogates", {"\xED\xA0\x80", "\xED\xBF\xBF"}},
      {"above U+10FFFF", {"\xF4\x90\x80\x80", "\xF5\x80\x80\x80"}}};
  for (const auto& [name, texts] : groups) {
    for (const std::string& text : texts)
      EXPECT_EQ(reread("[\"" + text + "\"]"), "error") << name << ": " << text;
  }
  EXPECT_EQ(reread("[\"\xF0\x9F\x98"), "error");
}

TEST(ReadJSON, NestsTo512AndNoDeeper) {
  EXPECT_EQ(reread(nested(512)), nested(512));
  EXPECT_EQ(reread(nested(513)), "error");
  EXPECT_EQ(reread(std::string(200'000, '[')), "error");
}

TEST(ReadJSON, ReadsAMillionValuesAndNoMore) {
  std::string zeros;
  for (int i = 0; i < 1'500'000; ++i) zeros += "0,";
  EXPECT_EQ(readJSON("[" + zeros + "0]")->array()->bytes()->size(), 1'500'001U);
  EXPECT_FALSE(readJSON("[" + zeros + "[]]"));
  // The last elements of the outer array, each with the number of its values.
  const std::pair<std::string, std::size_t> elements[] = {
      {"0", 1},       {R"("")", 1},   {"{}", 1},        {"[[[]]]", 3},
      {"[0,255]", 1}, {"[0,256]", 3}, {"[0,1,[2]]", 4}, {R"({"":0,"":{"":1}})", 4}};
  for (const auto& [element, values] : elements) {
    for (const std::size_t total : {1'000'000U, 1'000'001U}) {
      // Two arrays, byte values that count because of the -1 after them, and the element.
      const std::string text = "[[" + zeros.substr(0, 2 * (total - 3 - values)) + "-1]," + element + "]";
      EXPECT_EQ(readJSON(text).has_value(), total == 1'000'000) << element << total;
    }
  }
}

TEST(ReadJSON, KeepsIntegerRealAndBooleanApart) {
  const Value value = *readJSON("[1,1.0,true,300,18446744073709551616]");
  const Array& array = *value.array();
  EXPECT_TRUE(array[0].integer() && array[1].floating() && array[2].boolean());
  EXPECT_TRUE(array[3].integer() && array[4].floating());
}

TEST(ReadJSON, ReadsByteArraysTheFastWayLikeThePlainWay) {
  std::mt19937 random(7);
  for (std::uint64_t round = 0; round < 1000; ++round) {
    std::string text, spaced;
    // The same byte again and again, or any numbers up to 255 or a little more; few or many spaces.
    const bool isUniform = round % 2 == 0;
    const std::uint64_t bound = 256 + random() % 3;
    const std::uint64_t spaces = 2 + random() % 200;
    for (auto i = 100 + random() % 1000; i > 0; --i) {
      const std::uint64_t any = random() % 3000 == 0 ? 256'000'000'000'000 : random() % bound;
      const std::string number = std::to_string(isUniform ? round / 2 % 256 : any);
      text += (text.empty() ? "[" : ",") + number;
      spaced += (spaced.empty() ? "[" : random() % spaces == 0 ? ", " : ",") + number;
    }
    text += "]";
    spaced += "]";
    ASSERT_EQ(reread(spaced), text);
    const std::size_t comma = spaced.find(',', random() % 190);
    // Characters that have all bits but one in common with a comma.
    ASSERT_EQ(reread(std::string(spaced).replace(comma, 1, 1, "<$(-"[round % 4])), "error");
    ASSERT_EQ(reread(std::string(spaced).insert(comma + 1, "0")), "error");
    // Characters that have the low half of a digit in common with it.
    char& digit = spaced[spaced.find_first_of("0123456789", random() % 190)];
    for (const int high : {0x10, 0x50, 0x80, 0xB0}) {
      digit = static_cast<char>(high | (digit & 15));
      ASSERT_EQ(reread(spaced), "error") << spaced;
    }
  }
}

}  // namespace
}  // namespace orvane::test
