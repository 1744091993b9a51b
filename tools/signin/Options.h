#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace signin {

/// Wrong use of the program; what() is one line that names the option.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The calls of a sign-in, in their order.
enum class Call { picture, code, login };

/// What --only, and the lines of --json, call them.
inline constexpr std::string_view callNames[] = {"picture", "code", "login"};

/// Where --connect leads.
struct Address {
  std::string host;  ///< A name, an IPv4 address, or an IPv6 address without brackets.
  std::uint16_t port = 0;
};

/// What the command line says; a text is absent where its option was not given.
struct Options {
  std::optional<std::string> mobile;
  std::optional<std::string> clientId;
  std::optional<std::string> captcha;
  std::optional<std::string> code;
  std::optional<std::string> pictureFile;
  std::optional<Call> only;
  std::optional<Address> connect;
  std::optional<std::string> proxy;  ///< A URL.
  bool live = false;
  bool automatic = false;
  bool trace = false;
  bool json = false;
  bool help = false;
  bool version = false;

  /// Whether the program brings the service along.
  bool embedsService() const { return !connect && !live; }
  /// Whether the call is to be made.
  bool includes(Call call) const { return !only || only == call; }
};

/// Where answers come from that no option gives.
enum class Answerer { person, embeddedService, nobody };

/// Reads the arguments behind the program's name. Throws UsageError.
Options parseOptions(std::span<const char* const> arguments);

/// Throws UsageError when nobody answers and a call lacks what it needs.
Answerer chooseAnswerer(const Options& options, bool hasTerminal);

/// What --help prints.
std::string helpText();

}  // namespace signin
