#include <gtest/gtest.h>
#include <utility>
#include <vector>

#include "tools/signin/Options.h"

namespace signin {
namespace {

/// Returns the values that were understood, what is missing and where a service may be, or the error.
std::string outcomeOf(const std::vector<const char*>& arguments) try {
  const Options options = parseOptions(arguments);
  std::string line;
  for (const auto& text : {options.mobile, options.clientId, options.captcha, options.code}) {
    line += text ? "<" + *text + "> " : "- ";
  }
  return line.append(options.missing()) + "|" + options.service();
} catch (const UsageError& error) {
  return error.what();
}

TEST(SignInOptions, AreUnderstoodOrRefused) {
  const std::string wrongAddress = "--connect: expected HOST:PORT or [IPV6]:PORT with a port from 1 to 65535";
  const std::string wrongProxy =
      "--proxy: expected a URL such as http://HOST:PORT, with a port from 1 to 65535";
  const std::pair<std::vector<const char*>, std::string> cases[] = {
      // Understood.
      {{}, "- - - - --mobile|"},
      {{"--live", "--mobile=1", "--captcha", "2", "--code=3"}, "<1> - <2> <3> |"},
      {{"--client-id=", "--code=", "--mobile==--="}, "<=--=> <> - <> --captcha|"},
      {{"--mobile=9", "--auto", "--mobile=-1", "--only", "login", "--auto"}, "<-1> - - - --code|"},
      {{"--connect", "localhost:65535"}, "- - - - --mobile|localhost:65535"},
      {{"--connect=[::1]:8080", "--trace", "--unmasked"}, "- - - - --mobile|[::1]:8080"},
      {{"--live", "--proxy=http://a:b@[::1]:8080/"}, "- - - - --mobile|[::1]:8080"},
      {{"--live", "--proxy=http://proxy.test"}, "- - - - --mobile|proxy.test"},
      // Malformed.
      {{"--connect=localhost:0"}, wrongAddress},
      {{"--connect", "%:80"}, wrongAddress},
      {{"--connect=[fe80::1%lo]:80"}, wrongAddress},
      {{"--live", "--proxy=http://localhost:99999"}, wrongProxy},
      {{"--live", "--proxy=http://[::1"}, wrongProxy},
      {{"--client-id=a\nb"}, "--client-id: cannot be sent with a line end in it"},
      {{"--connect=::1:80"}, wrongAddress},
      // Not together, or not alone.
      {{"--connect=a:1", "--live"}, "--live: cannot be used with --connect"},
      {{"--proxy=http://localhost:1", "--connect=a:1"}, "--proxy: needs --live"},
      {{"--unmasked"}, "--unmasked: needs --trace or --har"},
      {{"--connect=a:1", "--trace", "--unmasked"},
       "--unmasked: allowed only if the requests stay on this machine"},
      {{"--json", "--picture", "-"}, "--picture -: cannot be used with --json"},
      {{"--only=code", "--picture=a"}, "--picture: not used by the call that --only names"},
  };
  for (const auto& [words, outcome] : cases)
    EXPECT_EQ(outcomeOf(words), outcome) << testing::PrintToString(words);
}

}  // namespace
}  // namespace signin
