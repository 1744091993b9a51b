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

/// What --only, the messages and the lines of --json call them.
inline constexpr const char* callNames[] = {"picture", "code", "login"};

/// Where --connect leads.
struct Address {
  std::string host;  ///< A name, an IPv4 address, or an IPv6 address without brackets.
  std::uint16_t port = 0;

  std::string authority() const;  ///< HOST:PORT, as in a URL.
};

/// What the command line says. A text is absent where its option was not given.
struct Options {
  std::optional<std::string> mobile;
  std::optional<std::string> clientId;
  std::optional<std::string> captcha;
  std::optional<std::string> code;
  std::optional<std::string> pictureFile;
  std::optional<std::string> proxy;
  std::optional<Call> only;
  std::optional<Address> connect;
  bool live = false;
  bool automatic = false;
  bool trace = false;
  bool unmasked = false;
  bool json = false;
  std::optional<std::string> printed;  ///< What to print instead of signing in, for --help and --version.

  /// Returns true if the program brings the service along.
  bool embedsService() const { return !connect && !live; }
  /// Returns true if the call is to be made.
  bool includes(Call call) const { return !only || only == call; }
  /// Returns true if standard output gets nothing but JSON lines or the picture.
  bool takesOutput() const { return json || pictureFile == "-"; }
  /// Returns the first option whose value the calls need and the command line lacks. Empty if there is none.
  std::string_view missing() const;
  /// Returns HOST:PORT of what may be a development service, by --connect or --proxy. Empty without one.
  std::string service() const;
};

/// Reads the arguments after the program's name. Throws UsageError.
Options parseOptions(std::span<const char* const> arguments);

}  // namespace signin
