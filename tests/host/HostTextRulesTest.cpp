#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "adapters/host/HostTextRules.h"

namespace orvane {
namespace {

TEST(HostTextRules, TellURLsFromOtherText) {
  const HostTextRules rules;
  for (const char* url :
       {"", "http://h", "http://h:80/p?q#f", "http://h:/", "/p", "p?q", "http://[::1]:8080/",
        "http://u:p@h:1/", "http://h/é中😀", "http://h/%20%aF%fA", "mailto:a@b", "http://h/a:b[c]",
        "http://h/?a=b?c", "http://", "http://h:065535/", "?", "#", "!$&'()*+,-._~:;=@"}) {
    EXPECT_TRUE(rules.isURL(url)) << url;
  }
  const std::pair<const char*, std::vector<std::string>> groups[] = {
      {"space or control character",
       {"http://h/a b", " http://h", "http://h\t", "http://h/\n", "\x7F", {"a\0b", 3}}},
      {"port", {"http://h:8x/", "http://h:65536/", "http://h:99999999999/", "http://h:-1/"}},
      {"brackets", {"http://[::1/", "http://::1]/", "http://[::1]x/", "http://a[b]/"}},
      {"forbidden character", {"a\"b", "a<b", "a>b", "a\\b", "a^b", "a`b", "a{b", "a|b", "a}b"}},
      {"percent sign", {"%", "%2", "%2g", "%zz"}},
      {"second number sign", {"a#b#c"}},
      {"not UTF-8", {"\x80", "\xFF", "\xED\xA0\x80"}}};
  for (const auto& [what, others] : groups)
    for (const std::string& other : others) EXPECT_FALSE(rules.isURL(other)) << what << ": " << other;
}

TEST(HostTextRules, KnowLettersMarksAndNumbersOfAllScripts) {
  const HostTextRules rules;
  for (const char32_t c :
       {U'é', U'中', U'ß', U'\u0301', U'\u0903', U'\u20DD', U'٣', U'Ⅷ', U'½', U'ǅ', U'ʰ', U'\U00010400'})
    EXPECT_TRUE(rules.isAlphanumeric(c)) << static_cast<unsigned>(c);
  for (const char32_t c : {U'€', U'–', U'。', U'\u00A0', U'😀', U'\u200B', U'\uE000', U'\U0010FFFF'})
    EXPECT_FALSE(rules.isAlphanumeric(c)) << static_cast<unsigned>(c);
}

}  // namespace
}  // namespace orvane
