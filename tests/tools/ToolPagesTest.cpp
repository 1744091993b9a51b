#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/spawn.h"
#include "tools/devservice/Code.h"
#include "tools/devservice/Fault.h"
#include "tools/devservice/IdentityService.h"
#include "tools/devservice/PageFile.h"

namespace {

/// Returns what a command prints, errors included.
std::string outputOf(const std::string& command) {
  const orvane::test::Ended ended = orvane::test::runShell(command + " 2>&1");
  EXPECT_EQ(ended.status, 0) << command;
  return ended.output;
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

// The lists that programs and people read are those of the service.
TEST(Pages, HaveTheCodesAndFaultsOfTheService) {
  const std::string page = outputOf("cat " TOOLS_FOLDER "/../docs/service.md");
  std::string codes = "|---|---|\n", faults = "|---|---|---|---|\n";
  std::vector<int> refusals;
  for (const auto& [code, text] : devservice::codeTable()) {
    const int number = static_cast<int>(code);
    codes += "| " + std::to_string(number) + " | " + std::string(text) + " |\n";
    if (number != 0) refusals.push_back(number);
  }
  for (const devservice::Fault& fault : devservice::faultTable()) {
    faults += "| " + std::to_string(fault.number);
    for (const auto cell : {fault.group, fault.name, fault.text}) faults.append(" | ").append(cell);
    faults += " |\n";
  }
  EXPECT_NE(page.find(codes + "\n"), page.npos) << codes;
  EXPECT_NE(page.find(faults + "\n"), page.npos) << faults;

  const auto contentOf = [](std::string_view path) {
    return std::ranges::find(devservice::pageFiles(), path, &devservice::PageFile::path)->content;
  };
  const auto description = nlohmann::json::parse(contentOf("/openapi.json"));
  EXPECT_EQ(description["components"]["schemas"]["Refusal"]["properties"]["code"]["enum"], refusals);
  EXPECT_EQ(description["paths"].size(), std::size(devservice::callNames));
  const std::string manual = outputOf("cat " TOOLS_FOLDER "/devservice/orvane-devservice.1");
  for (const auto& [path, call] : description["paths"].items()) {
    EXPECT_TRUE(devservice::callAt(path)) << path;
    EXPECT_NE(page.find("- `" + path + "` "), page.npos) << path;
    EXPECT_NE(manual.find(".B " + path + "\n"), manual.npos) << path;
  }
  for (const std::string_view name : devservice::callNames) {
    const std::string option = "<option>" + std::string(name) + "</option>";
    EXPECT_NE(contentOf("/").find(option), std::string_view::npos) << option;
  }
}

}  // namespace
