#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace support {

/// The strings that a trace or a saved file must not show. Thread-safe.
class Secrets {
 public:
  /// Replaces a secret.
  static constexpr std::string_view mask = "***";

  /// If `areMasked` is false, nothing is masked.
  explicit Secrets(bool areMasked = true) : areMasked_(areMasked) {}

  /// Adds a string to mask. Ignores one of less than two characters, which occurs in any line.
  void add(std::string_view secret);

  /// Adds a mobile number, also as a service may write it: without its country code, and with a 0 instead.
  void addNumber(std::string_view number);

  /// Returns true if the value of such a member, or of such a header field, is a secret.
  ///@{
  static bool isSecretMember(std::string_view name);
  static bool isSecretField(std::string_view name);
  ///@}

  bool areMasked() const { return areMasked_; }

  /// Returns the text with every secret in it replaced by the mask. Ignores the case of ASCII letters, and
  /// marks between the digits of a number: "07700 900-123". Any seven digits or more in a row may be a
  /// number.
  std::string masked(std::string_view text) const;

  /// Returns the value of a header field with its secrets masked.
  std::string maskedField(std::string_view name, std::string_view value) const;

  /// Returns a body with its secrets masked. In JSON, the members "mobile", "captcha", "verificationCode",
  /// "IMEI" and "IMSI" have the mask as value; all other names and values are treated like masked(). A long
  /// array of numbers is replaced by its size. Levels that are nested too deep are left out, and so are
  /// members after the first thousand.
  std::string maskedBody(std::string_view body) const;

 private:
  const bool areMasked_;
  mutable std::mutex mutex_;
  std::vector<std::string> secrets_;  // In lower case, longest first.
};

}  // namespace support
