#include "tools/signin/Options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

#include "orvane/orvane.h"
#include "tools/support/localHosts.h"

namespace signin {
namespace {

constexpr const char* summary =
    R"(Signs a user in by mobile phone number: fetches a picture, has a code sent by text message, and logs
in with the code.

Without --connect and --live it starts a development service inside itself and signs in there. It
asks for each value that no option gives. If standard input is not a terminal, or with --auto, it
asks the development service in place of a person: the one inside it, or the one that --connect or
--proxy leads to.
)";

constexpr const char* footer = R"(
Exit status: 0 success; 1 the service refused a call; 2 wrong use; 3 a call got no reply, or none that
is JSON; 4 the machine lacks something, such as memory or a port. Ctrl-C ends the program by its
signal, shown as 130 by a shell. A reply that breaks the protocol, or a login without a reply, aborts
the program: 134. With NO_COLOR in the environment it uses no colours. The manual page has the
details.)";

/// An option that only one step uses.
struct Use {
  std::string_view name;
  std::optional<std::string> Options::*value;
  Step step;
  bool isNeeded;
};

constexpr Use uses[] = {
    {"--picture", &Options::pictureFile, Step::picture, false},
    {"--captcha", &Options::captcha, Step::code, true},
    {"--code", &Options::code, Step::login, true},
};

Step readStep(const std::string& name) {
  return static_cast<Step>(std::ranges::find(stepNames, name) - std::begin(stepNames));
}

/// Returns the host and the port in HOST:PORT or [IPV6]:PORT. Without a port it is `defaultPort`. Returns
/// nullopt if the text is malformed, or the port is 0.
std::optional<Address> readAddress(std::string_view text, std::uint16_t defaultPort = 0) {
  const bool isIPv6 = text.starts_with('[');
  const std::size_t colon = text.find(':', isIPv6 ? std::min(text.find(']'), text.size()) : 0);
  std::string_view host = text.substr(0, colon);
  if (isIPv6) host = host.ends_with(']') ? host.substr(1, host.size() - 2) : "";
  const char* const allowed = isIPv6 ? "0123456789ABCDEFabcdef:."
                                     : "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz-._";
  const bool isHost = !host.empty() && host.find_first_not_of(allowed) == host.npos;
  if (!isHost || (host.find(':') != host.npos) != isIPv6) return std::nullopt;

  Address address{std::string(host), defaultPort};
  if (colon != text.npos) {
    const auto [end, error] =
        std::from_chars(text.data() + colon + 1, text.data() + text.size(), address.port);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  }
  return address.port != 0 ? std::optional(std::move(address)) : std::nullopt;
}

/// Returns the words in the order that CLI11 takes, the last one first. "--name=" becomes two words, since
/// CLI11 would use the word after it as the value.
std::vector<std::string> reversed(std::span<const char* const> arguments) {
  std::vector<std::string> words;
  for (const std::string_view argument : arguments) {
    const bool isEmpty = argument.starts_with("--") && argument.find('=') == argument.size() - 1;
    words.emplace_back(isEmpty ? argument.substr(0, argument.size() - 1) : argument);
    if (isEmpty) words.emplace_back();
  }
  std::ranges::reverse(words);
  return words;
}

void refuseContradictions(const Options& options) {
  const std::pair<bool, const char*> contradictions[] = {
      {options.connect && options.live, "--live: cannot be used with --connect"},
      {options.proxy && !options.live, "--proxy: needs --live"},
      {options.unmasked && !options.trace && !options.harFile, "--unmasked: needs --trace or --har"},
      {options.json && options.pictureFile == "-", "--picture -: cannot be used with --json"},
  };
  for (const auto& [isGiven, complaint] : contradictions) {
    if (isGiven) throw UsageError(complaint);
  }
  constexpr std::uint16_t curlPort = 1080;  // Of a proxy without a port.
  if (options.proxy && !options.proxy->empty() && !readAddress(options.service(), curlPort))
    throw UsageError("--proxy: expected a URL such as http://HOST:PORT, with a port from 1 to 65535");
  if (options.clientId && options.clientId->find_first_of("\r\n") != std::string::npos)
    throw UsageError("--client-id: cannot be sent with a line end in it");
  for (const Use& use : uses) {
    if (options.*use.value && !options.includes(use.step)) {
      throw UsageError(std::string(use.name) + ": not used by the call that --only names");
    }
  }
  if (!options.unmasked || options.embedsService()) return;
  const std::string service = options.service();
  const std::string_view host = std::string_view(service).substr(0, service.rfind(':'));
  if (std::ranges::find(support::localHosts, host) == std::end(support::localHosts)) {
    throw UsageError("--unmasked: allowed only if the requests stay on this machine");
  }
}

}  // namespace

std::string_view Options::missing() const {
  if (!mobile) return "--mobile";
  for (const Use& use : uses) {
    if (use.isNeeded && includes(use.step) && !(this->*use.value)) return use.name;
  }
  return {};
}

std::string Options::service() const {
  if (connect) return connect->authority();
  std::string_view rest = proxy ? *proxy : std::string_view();
  if (const std::size_t scheme = rest.find("://"); scheme != rest.npos) rest.remove_prefix(scheme + 3);
  rest = rest.substr(0, rest.find('/'));
  return std::string(rest.substr(rest.rfind('@') + 1));
}

Options parseOptions(std::span<const char* const> arguments) {
  Options options;
  std::string only;
  std::string connect;
  CLI::App app(summary, "orvane-signin");
  app.footer(footer);
  app.get_formatter()->column_width(24);
  const auto addText = [&app](const char* name, auto& value, const char* type, const char* help) {
    return app.add_option(name, value, help)->type_name(type)->take_last();
  };
  const auto addFlag = [&app](const char* name, bool& value, const char* help) {
    return app.add_flag(name, value, help)->disable_flag_override()->take_last();
  };
  auto* const connecting = addText("--connect", connect, "HOST:PORT",
                                   "send the requests to a service at this address; [IPV6]:PORT works too");
  addFlag("--live", options.live, "send the requests to the address that the library was built for");
  addText("--proxy", options.proxy, "URL", "with --live: send them through this HTTP proxy");
  addText("--mobile", options.mobile, "NUMBER", "the mobile number");
  addText("--captcha", options.captcha, "TEXT", "the text in the picture");
  addText("--code", options.code, "TEXT", "the code in the text message");
  addText("--client-id", options.clientId, "ID",
          "send this client identifier, which may be empty; default: send none");
  addText("--picture", options.pictureFile, "FILE",
          "save the picture to FILE and do not show it; - is standard output");
  addText("--only", only, "CALL", "make only this call: picture, code or login")
      ->check(CLI::IsMember(std::vector<std::string>(std::begin(stepNames), std::end(stepNames)))
                  .description(""));
  addFlag("--auto", options.automatic, "ask no questions");
  addFlag("--json", options.json,
          "for scripts: print a line of JSON after each step; questions and pictures\n"
          "go to standard error");
  addFlag("--trace", options.trace,
          "print each request as a curl command, and its reply, on standard error;\n"
          "mobile number, text in the picture, code and client identifier are masked");
  addText("--har", options.harFile, "FILE",
          "save the requests and replies to FILE, for the network panel of a browser;\n"
          "masked like a trace");
  addFlag("--unmasked", options.unmasked,
          "with --trace or --har: mask nothing; only if the requests stay on this\nmachine");
  app.set_version_flag(
      "--version",
      "orvane-signin " ORVANE_VERSION "\n" + std::string(reinterpret_cast<const char*>(OrvaneVersionString)),
      "print the versions of the program and of the library");
  app.set_help_flag("-h,--help", "print this text");
  try {
    app.parse(reversed(arguments));
  } catch (const CLI::CallForHelp&) {
    options.printed = app.help();
    return options;
  } catch (const CLI::CallForVersion& version) {
    options.printed = version.what();
    return options;
  } catch (const CLI::ParseError& error) {
    throw UsageError(error.what());
  }
  if (!only.empty()) options.only = readStep(only);
  if (connecting->count() > 0) {
    options.connect = readAddress(connect);
    if (!options.connect)
      throw UsageError("--connect: expected HOST:PORT or [IPV6]:PORT with a port from 1 to 65535");
  }
  refuseContradictions(options);
  return options;
}

}  // namespace signin
