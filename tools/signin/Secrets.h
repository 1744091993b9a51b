#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace signin {

/// The texts that a trace must not show. Thread-safe.
class Secrets {
 public:
  /// Replaces a secret.
  static constexpr std::string_view mask = "***";

  /// If `areMasked` is false, nothing is masked.
  explicit Secrets(bool areMasked = true) : areMasked_(areMasked) {}

  /// Adds a text to mask. Ignores texts of less than two characters, which occur in any line.
  void add(std::string_view secret);

  /// Adds a mobile number, also as a service may write it: without its country code, and with a 0 instead.
  void addNumber(std::string_view number);

  bool areMasked() const { return areMasked_; }

  /// Returns the text with every secret in it replaced by the mask. Ignores the case of ASCII letters, and
  /// marks between the digits of a number: "07700 900-123".
  std::string masked(std::string_view text) const;

  /// Returns a body with its secrets masked. In JSON, the members "mobile", "captcha" and "verificationCode"
  /// have the mask as value; all other names and values are treated like masked(). A long array of numbers is
  /// replaced by its size, and levels that are nested too deep are left out.
  std::string maskedBody(std::string_view body) const;

 private:
  const bool areMasked_;
  mutable std::mutex mutex_;
  std::vector<std::string> secrets_;  // Longest first.
};

}  // namespace signin
