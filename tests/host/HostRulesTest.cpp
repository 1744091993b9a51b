#include <chrono>
#include <fstream>
#include <future>
#include <gtest/gtest.h>

#include "adapters/host/HostTextRules.h"
#include "adapters/host/Redirect.h"
#include "orvane/platform/MainQueue.h"
#include "orvane/platform/PostingQueue.h"

namespace orvane {
namespace {

TEST(HostTextRules, TellURLsFromOtherText) {
  const HostTextRules rules;
  for (const char* url :
       {"", "http://h", "http://h:80/p?q#f", "http://h:/", "/p", "p?q", "http://[::1]:8080/",
        "http://u:p@h:1/", "http://h/é中😀", "http://h/%20%aF", "mailto:a@b", "http://h/a:b[c]",
        "http://h/?a=b?c", "http://", "http://h:065535/", "?", "#"}) {
    EXPECT_TRUE(rules.isURL(url)) << url;
  }
  const std::vector<const char*> others[] = {
      {"http://h/a b", "http://h\t", "http://h/\n", "http://h/\x7F", "http://h:8x/", "http://h:65536/",
       "http://h:99999999999/", "http://[::1/", "http://::1]/", "http://[::1]x/", "http://a[b]/",
       "http://h:-1/"},
      {" http://h", "a\"b", "a<b", "a>b", "a\\b", "a^b", "a`b", "a{b", "a|b", "a}b", "%", "%2", "%2g", "%zz",
       "a#b#c", "\xFF", "\xED\xA0\x80"},
  };
  for (const auto& group : others) {
    for (const char* other : group) EXPECT_FALSE(rules.isURL(other)) << other;
  }
  EXPECT_FALSE(rules.isURL(std::string_view("a\0b", 3)));
}

TEST(HostTextRules, KnowLettersMarksAndNumbersOfAllScripts) {
  const HostTextRules rules;
  for (const char32_t c :
       {U'é', U'中', U'ß', U'\u0301', U'\u0903', U'\u20DD', U'٣', U'Ⅷ', U'½', U'ǅ', U'ʰ', U'\U00010400'})
    EXPECT_TRUE(rules.isAlphanumeric(c)) << static_cast<unsigned>(c);
  for (const char32_t c : {U'€', U'–', U'。', U'\u00A0', U'😀', U'\u200B', U'\uE000', U'\U0010FFFF'})
    EXPECT_FALSE(rules.isAlphanumeric(c)) << static_cast<unsigned>(c);
}

/// "VERB body URL" and a letter for each header field that went along, or the error's code.
std::string redirected(const char* method, const char* from, int status, const char* location) {
  URLRequest request(from);
  request.setMethod(method);
  request.setBody({'b'});
  const std::pair<const char*, char> fields[] = {{"Authorization", 'A'},       {"cookie", 'C'},
                                                 {"Proxy-Authorization", 'P'}, {"Content-Type", 't'},
                                                 {"content-encoding", 'e'},    {"Content-Language", 'l'},
                                                 {"Content-Location", 'o'},    {"X", 'X'}};
  for (const auto& [name, letter] : fields) request.addValue("v", name);
  const auto next = redirect(request, status, location);
  if (const auto* code = std::get_if<SessionErrorCode>(&next)) return std::to_string(static_cast<int>(*code));
  const auto& followed = std::get<URLRequest>(next);
  std::string text = followed.method() + (followed.body() ? " b " : " - ") + followed.url() + " ";
  for (const auto& [name, letter] : fields) {
    if (followed.value(name)) text.push_back(letter);
  }
  return text;
}

TEST(Redirect, DecidesWhatFollows) {
  struct Row {
    const char* method;
    const char* from;
    int status;
    const char* location;
    const char* expected;
  };
  const std::vector<Row> rows = {
      {"POST", "http://h/", 301, "http://h/n", "GET - http://h/n ACPX"},
      {"POST", "http://h/", 302, "http://H:80/n", "GET - http://H:80/n ACPX"},
      {"POST", "http://h/", 303, "http://h/n", "GET - http://h/n ACPX"},
      {"PUT", "http://h/", 303, "http://h/n", "GET - http://h/n ACPX"},
      {"HEAD", "http://h/", 303, "http://g/", "HEAD b http://g/ teloX"},
      {"PUT", "http://h/", 302, "http://h/n", "PUT b http://h/n ACPteloX"},
      {"POST", "http://h/", 307, "http://h/n", "POST b http://h/n ACPteloX"},
      {"POST", "http://h/", 308, "http://other/", "POST b http://other/ teloX"},
      {"POST", "http://h/", 308, "http://h:81/", "POST b http://h:81/ teloX"},
      {"POST", "http://h/", 308, "http://h@other/", "POST b http://h@other/ teloX"},
      {"GET", "http://h/", 301, "https://h/", "GET b https://h/ teloX"},
      {"GET", "https://h/", 301, "https://h/n", "GET b https://h/n ACPteloX"},
      {"GET", "https://h/", 301, "http://h/", "-1002"},
      {"GET", "http://h/", 301, "file:///etc/passwd", "-1002"},
      {"GET", "http://h/", 301, "ftp://h/", "-1002"},
      {"GET", "http://h/", 301, "nowhere", "-1002"}};
  for (const auto& [method, from, status, location, expected] : rows)
    EXPECT_EQ(redirected(method, from, status, location), expected) << status << " " << location;
}

TEST(SessionError, SaysWhatThePageSays) {
  std::ifstream page(ERRORS_PAGE);
  std::vector<int> codes;
  for (std::string line; std::getline(page, line);) {
    if (!line.starts_with("| -1")) continue;
    codes.push_back(std::stoi(line.substr(2)));
    const std::string sentence = line.substr(line.find(" | ") + 3);
    const ErrorPtr error = makeSessionError(SessionErrorCode{codes.back()}, "u", "detail");
    EXPECT_EQ(*error->userInfo.at("NSLocalizedDescription").text(), sentence.substr(0, sentence.find(" |")));
    EXPECT_EQ(*error->userInfo.at("NSDebugDescription").text(), "detail");
  }
  EXPECT_EQ(codes.size(), 17U);
}

TEST(MainQueue, RunsInOrderUntilStopped) {
  MainQueue queue;
  std::vector<int> ran;
  queue.async([&] {
    ran.push_back(1);
    queue.async([&] { ran.push_back(3); });
  });
  queue.async([&] { ran.push_back(2); });
  EXPECT_EQ(queue.runPending(), 2U);
  EXPECT_FALSE(queue.run(std::chrono::milliseconds(0)));
  queue.async([&] { queue.stop(); });
  queue.async([&] { ran.push_back(4); });
  queue.run();
  EXPECT_EQ(ran, (std::vector<int>{1, 2, 3}));
  queue.stop();
  EXPECT_TRUE(queue.run(std::chrono::milliseconds::max()));
  const std::function<void()> again = [&] { queue.async(again); };
  again();
  EXPECT_FALSE(queue.run(std::chrono::milliseconds(1)));
  const auto other = std::async(std::launch::async, [&] { queue.async([&] { queue.stop(); }); });
  queue.run();
  EXPECT_EQ(ran, (std::vector<int>{1, 2, 3, 4}));
}

TEST(PostingQueue, HandsTasksToTheLoop) {
  std::vector<Task> posted;
  PostingQueue queue([&](Task task) { posted.push_back(std::move(task)); });
  int ran = 0;
  queue.async([&] { ++ran; });
  EXPECT_EQ(ran, 0);
  posted.at(0)();
  EXPECT_EQ(ran, 1);
}

}  // namespace
}  // namespace orvane
