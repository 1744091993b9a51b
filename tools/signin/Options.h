#pragma once

#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tools/signin/Address.h"
#include "tools/signin/Step.h"

namespace signin {

/// Wrong use of the program. what() is one line that names the option.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The command line. A value is absent if its option was not given.
struct Options {
  std::optional<std::string> mobile;
  std::optional<std::string> clientId;
  std::optional<std::string> captcha;
  std::optional<std::string> code;
  std::optional<std::string> pictureFile;
  std::optional<std::string> proxy;
  std::optional<std::string> harFile;
  std::optional<Step> only;
  std::optional<Address> connect;
  bool live = false;
  bool automatic = false;
  bool trace = false;
  bool unmasked = false;
  bool json = false;
  std::optional<std::string> printed;  ///< The text of --help or --version, to print in place of signing in.

  /// Returns true if the program starts a development service of its own.
  bool embedsService() const { return !connect && !live; }
  /// Returns true if the step is to be done.
  bool includes(Step step) const { return !only || only == step; }
  /// Returns true if standard output gets only JSON lines or the picture.
  bool takesOutput() const { return json || pictureFile == "-"; }
  /// Returns the first option that the steps need and that was not given. Empty if there is none.
  std::string_view missing() const;
  /// Returns HOST:PORT of what may be a development service: that of --connect, else that of --proxy, else an
  /// empty string.
  std::string service() const;
};

/// Parses the arguments after the program's name. Throws UsageError.
Options parseOptions(std::span<const char* const> arguments);

}  // namespace signin
