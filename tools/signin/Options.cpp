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
  constexpr std::string_view names[] = {"picture", "code", "login"};
  const auto found = std::ranges::find(names, value);
  if (found == std::end(names)) throw UsageError("--only: picture, code or login wanted");
  options.only = static_cast<Call>(found - std::begin(names));
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
  void (*set)(Options& options, std::string_view value);
  bool takesValue;
};

constexpr OptionKind kinds[] = {
    {"--mobile", setText<&Options::mobile>, true},
    {"--client-id", setText<&Options::clientId>, true},
    {"--captcha", setText<&Options::captcha>, true},
    {"--code", setText<&Options::code>, true},
    {"--picture", setText<&Options::pictureFile>, true},
    {"--only", setOnly, true},
    {"--connect", setConnect, true},
    {"--live", setFlag<&Options::live>, false},
    {"--auto", setFlag<&Options::automatic>, false},
    {"--trace", setFlag<&Options::trace>, false},
    {"--help", setFlag<&Options::help>, false},
    {"--version", setFlag<&Options::version>, false},
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
      if (!kind->takesValue) throw UsageError(std::string(name) + ": takes no value");
      value = word.substr(name.size() + 1);
    } else if (kind->takesValue) {
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

const std::string_view helpText = R"(Usage: orvane-signin [OPTION]...
Signs a user in by mobile phone number: a picture to read, a code by text message, the login.

Without --connect and --live it starts the development service inside itself and signs in there. It
asks for what no option gives. Without a terminal on standard input, or with --auto, it asks nobody
and takes the answers from the service inside it.

  --connect HOST:PORT   send the requests for the service to this address; [IPV6]:PORT, too
  --live                send them to the service's own address
  --mobile NUMBER       the mobile number
  --captcha TEXT        what the picture says
  --code TEXT           the code in the text message
  --client-id ID        send this client identifier, which may be empty; none is sent otherwise
  --picture FILE        save the picture as it came, and do not show it
  --only CALL           make one call: picture, code or login
  --auto                ask nobody
  --trace               print each request on standard error as a curl command, and its reply;
                        number, picture's text, code and client identifier are masked
  --help                print this
  --version             print the versions of the program and of the library

Exit status: 0 after a success, 1 when a call failed, 2 for wrong use. A reply that breaks the
protocol aborts the program. NO_COLOR in the environment: the picture is drawn without colours.
)";

}  // namespace signin
