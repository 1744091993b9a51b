#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

#include "tests/support/Conversation.h"
#include "tools/devservice/Server.h"

namespace {

struct Tool {
  std::string name;
  std::string program;
  std::string folder;  // Of its sources.
};

const Tool tools[] = {{"orvane-signin", SIGNIN_PROGRAM, TOOLS_FOLDER "/signin/"},
                      {"orvane-devservice", DEVSERVICE_PROGRAM, TOOLS_FOLDER "/devservice/"}};

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

bool isInstalled(const std::string& command) {
  return std::system(("command -v " + command + " >/dev/null").c_str()) == 0;
}

TEST(DevServiceProgram, SaysWhyItDoesNotStart) {
  devservice::IdentityService service;
  const devservice::Server server(service);
  const std::string taken = std::to_string(server.port());
  const std::string program = "{ " DEVSERVICE_PROGRAM;
  EXPECT_EQ(outputOf(program + " --port=" + taken + "; echo $?; }"),
            "orvane-devservice: cannot listen on 127.0.0.1:" + taken +
                ": Address already in use; --port 0 takes a free port\n1\n");
  const std::string refusal = outputOf(program + " --port 65536; echo $?; }");
  EXPECT_TRUE(refusal.starts_with("orvane-devservice: --port: ") && refusal.ends_with("\n2\n")) << refusal;
}

TEST(Pages, HaveTheOptionsOfTheHelp) {
  for (const Tool& tool : tools) {
    const auto options = optionsIn(outputOf(tool.program + " --help"), "^ +(?:-h,)?(--[a-z-]+)");
    EXPECT_TRUE(options.contains("--version"));
    for (const std::string& file : {tool.folder + tool.name + ".bash", tool.folder + "_" + tool.name}) {
      EXPECT_EQ(optionsIn(outputOf("cat " + file), "(--[a-z][a-z-]*)"), options) << file;
    }
    if (!isInstalled("man")) continue;
    const std::string file = tool.folder + tool.name + ".1";
    const std::string page = outputOf("LC_ALL=C.UTF-8 man --warnings=w --local-file " + file);
    EXPECT_EQ(optionsIn(page, "^ +(?:-h, )?(--[a-z-]+)"), options);
    EXPECT_TRUE(page.starts_with("ORVANE-")) << page;  // Warnings come first.
  }
}

TEST(Pages, CompleteInTheShells) {
  const std::string file = testing::TempDir() + "pages-" + std::to_string(getpid()) + " 1";
  std::ofstream(file) << "192.0.2.1 host.test\n";
  const std::pair<std::string, std::string> cases[] = {
      {"orvane-signin --only l", "<login>"},
      {"orvane-signin --only=pi", "<--only=picture>"},
      {"orvane-signin --connect=host", "<--connect=host.test:>"},
      {"orvane-signin --auto --picture " + file.substr(0, file.find(' ')), "<" + file + ">"},
      {"orvane-signin --unm", "<--unmasked>"},
      {"orvane-devservice --qui", "<--quiet>"},
  };
  // Each shell gets the completions, and programs that print their arguments.
  const std::string programs =
      R"(orvane-signin() { printf "<%s>\n" "$@"; }; orvane-devservice() { orvane-signin "$@"; }; )";
  const std::pair<std::vector<std::string>, std::string> shells[] = {
      {{"bash", "--norc", "-i"},
       ". " TOOLS_FOLDER "/signin/orvane-signin.bash; . " TOOLS_FOLDER
       "/devservice/orvane-devservice.bash\n"},
      {{"zsh", "-f", "-i"},
       "fpath=(" TOOLS_FOLDER "/signin " TOOLS_FOLDER "/devservice $fpath); autoload -U compinit;"
       " compinit -D -u; zstyle :completion:\\* hosts host.test\n"},
  };
  const std::string path = std::string("PATH=") + std::getenv("PATH");
  for (const auto& [shell, setUp] : shells) {
    if (!isInstalled(shell.front())) continue;
    orvane::test::Conversation talk(shell,
                                    {"TERM=dumb", "PS1=ready? ", "HISTFILE=", "HOSTFILE=" + file, path});
    talk.hear("ready? ");
    talk.say(programs + setUp);
    talk.hear("ready? ");
    for (const auto& [typed, printed] : cases) {
      talk.say(typed + "\t\n");
      const std::string heard = talk.hear("ready? ");
      EXPECT_NE(heard.find(printed), heard.npos) << shell.front() << ": " << typed << "\n" << heard;
    }
  }
  unlink(file.c_str());
}

}  // namespace
