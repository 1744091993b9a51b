#include "tools/signin/Options.h"

#include <algorithm>
#include <charconv>
#include <iterator>

namespace signin {
namespace {

template <auto member>
void setText(Options& options, std::string_view value) {
  options.*member = std::string(value);
}

template <auto member>
void setFlag(Options& options, std::string_view) {
  options.*member = true;
}

void setOnly(Options& options, std::string_view value) {
  const auto found = std::ranges::find(callNames, value);
  if (found == std::end(callNames)) throw UsageError("--only: picture, code or login wanted");
  options.only = static_cast<Call>(found - std::begin(callNames));
}

void setConnect(Options& options, std::string_view value) {
  const std::size_t colon = value.rfind(':');
  std::string_view host = value.substr(0, colon);
  const std::string_view port = colon == value.npos ? "" : value.substr(colon + 1);
  const bool bracketed = host.starts_with('[') && host.ends_with(']');
  if (bracketed) host = host.substr(1, host.size() - 2);

  Address address{std::string(host)};
  const auto [end, error] = std::from_chars(port.data(), port.data() + port.size(), address.port);
  const bool isPort = error == std::errc() && end == port.data() + port.size() && address.port != 0;
  if (!isPort || host.empty() || (host.find(':') != host.npos) != bracketed) {
    throw UsageError("--connect: HOST:PORT or [IPV6]:PORT wanted, with a port from 1 to 65535");
  }
  options.connect = std::move(address);
}

struct OptionKind {
  std::string_view name;
  std::string_view valueName;  // empty where the option takes no value
  std::string_view help;       // its lines
  void (*set)(Options& options, std::string_view value);
};

constexpr OptionKind kinds[] = {
    {"--connect", "HOST:PORT", "send the requests for the service to this address; [IPV6]:PORT, too",
     setConnect},
    {"--live", "", "send them to the service's own address", setFlag<&Options::live>},
    {"--proxy", "URL", "with --live: send them by this HTTP proxy", setText<&Options::proxy>},
    {"--mobile", "NUMBER", "the mobile number", setText<&Options::mobile>},
    {"--captcha", "TEXT", "what the picture says", setText<&Options::captcha>},
    {"--code", "TEXT", "the code in the text message", setText<&Options::code>},
    {"--client-id", "ID", "send this client identifier, which may be empty; none is sent otherwise",
     setText<&Options::clientId>},
    {"--picture", "FILE", "save the picture as it came, and do not show it", setText<&Options::pictureFile>},
    {"--only", "CALL", "make one call: picture, code or login", setOnly},
    {"--auto", "", "ask nobody", setFlag<&Options::automatic>},
    {"--json", "",
     "print a JSON object a line for each step that ended, for scripts; what is\n"
     "there for a person goes to standard error",
     setFlag<&Options::json>},
    {"--trace", "",
     "print each request on standard error as a curl command, and its reply;\n"
     "number, picture's text, code and client identifier are masked",
     setFlag<&Options::trace>},
    {"--help", "", "print this", setFlag<&Options::help>},
    {"--version", "", "print the versions of the program and of the library", setFlag<&Options::version>},
};

/// What one call alone has a use for.
struct Use {
  std::string_view name;
  std::optional<std::string> Options::*value;
  Call call;
  bool isNeeded;
};

constexpr Use uses[] = {
    {"--picture", &Options::pictureFile, Call::picture, false},
    {"--captcha", &Options::captcha, Call::code, true},
    {"--code", &Options::code, Call::login, true},
};

void refuseContradictions(const Options& options) {
  if (options.connect && options.live) throw UsageError("--live: contradicts --connect");
  if (options.proxy && !options.live) throw UsageError("--proxy: needs --live");
  for (const Use& use : uses) {
    if (options.*use.value && !options.includes(use.call)) {
      throw UsageError(std::string(use.name) + ": the call that --only names has no use for it");
    }
  }
}

}  // namespace

Options parseOptions(std::span<const char* const> arguments) {
  Options options;
  for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
    const std::string_view word = *argument;
    const std::string_view name = word.starts_with("--") ? word.substr(0, word.find('=')) : word;
    const auto kind = std::ranges::find(kinds, name, &OptionKind::name);
    if (kind == std::end(kinds)) throw UsageError(std::string(name) + ": no such option");
    std::string_view value;
    if (name.size() < word.size()) {
      if (kind->valueName.empty()) throw UsageError(std::string(name) + ": takes no value");
      value = word.substr(name.size() + 1);
    } else if (!kind->valueName.empty()) {
      if (++argument == arguments.end()) throw UsageError(std::string(name) + ": a value is missing");
      value = *argument;
    }
    kind->set(options, value);
  }
  refuseContradictions(options);
  return options;
}

Answerer chooseAnswerer(const Options& options, bool hasTerminal) {
  if (hasTerminal && !options.automatic) return Answerer::person;
  if (options.embedsService()) return Answerer::embeddedService;
  const auto require = [](bool isThere, std::string_view name) {
    if (!isThere) throw UsageError(std::string(name) + ": missing, and there is nobody to ask");
  };
  require(options.mobile.has_value(), "--mobile");
  for (const Use& use : uses) {
    if (use.isNeeded && options.includes(use.call)) require((options.*use.value).has_value(), use.name);
  }
  return Answerer::nobody;
}

std::string helpText() {
  std::string text = R"(Usage: orvane-signin [OPTION]...
Signs a user in by mobile phone number: a picture to read, a code by text message, the login.

Without --connect and --live it starts the development service inside itself and signs in there. It
asks for what no option gives. Without a terminal on standard input, or with --auto, it asks nobody
and takes the answers from the service inside it.

)";
  constexpr std::size_t helpColumn = 24;
  for (const OptionKind& kind : kinds) {
    std::string line("  ");
    line.append(kind.name).append(" ").append(kind.valueName);
    line.resize(helpColumn, ' ');
    for (const char c : kind.help) {
      line.push_back(c);
      if (c == '\n') line.append(helpColumn, ' ');
    }
    text.append(line).append("\n");
  }
  return text + R"(
Exit status: 0 after a success, 1 when the service refused a call, 2 for wrong use, 3 when a call got
no reply or none that is JSON, 4 when the machine lacks something. Ctrl-C ends the program by its
signal, 130 in a shell. A reply that breaks the protocol, and a login without a reply, abort it: 134.
NO_COLOR in the environment: no colours. The manual page has the rest.
)";
}

}  // namespace signin
