#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <string>
#include <utility>

namespace {

/// Returns what a command prints, errors included.
std::string outputOf(const std::string& command) {
  std::FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
  std::string output;
  for (int c; (c = std::fgetc(pipe)) != EOF;) output.push_back(static_cast<char>(c));
  EXPECT_EQ(pclose(pipe), 0) << command;
  return output;
}

std::set<std::string> optionsIn(const std::string& text, const char* pattern) {
  const std::regex regex(pattern, std::regex::multiline);
  std::set<std::string> options;
  for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match) {
    options.insert(match->str(1));
  }
  return options;
}

TEST(Pages, HaveTheOptionsOfTheHelp) {
  const std::pair<std::string, std::string> tools[] = {{"signin", SIGNIN_PROGRAM},
                                                       {"devservice", DEVSERVICE_PROGRAM}};
  for (const auto& [tool, program] : tools) {
    const std::string folder = TOOLS_FOLDER "/" + tool + "/", name = "orvane-" + tool;
    const auto options = optionsIn(outputOf(program + " --help"), "^ +(?:-h,)?(--[a-z-]+)");
    EXPECT_TRUE(options.contains("--version"));
    for (const std::string& file : {folder + name + ".bash", folder + "_" + name}) {
      EXPECT_EQ(optionsIn(outputOf("cat " + file), "(--[a-z][a-z-]*)"), options) << file;
    }
    if (std::system("command -v man >/dev/null") != 0) continue;
    const std::string page = outputOf("LC_ALL=C.UTF-8 man --warnings=w --local-file " + folder + name + ".1");
    EXPECT_EQ(optionsIn(page, "^ +(?:-h, )?(--[a-z-]+)"), options);
    EXPECT_TRUE(page.starts_with("ORVANE-")) << page;  // Warnings come first.
  }
}

}  // namespace
