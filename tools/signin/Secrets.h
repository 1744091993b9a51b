#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace signin {

/// The texts that no trace may show, unless nothing is masked. May be used from any thread.
class Secrets {
 public:
  /// What stands in place of a secret.
  static constexpr std::string_view mask = "***";

  explicit Secrets(bool areMasked = true) : areMasked_(areMasked) {}

  /// Texts of less than two characters are in every line and not looked for.
  void add(std::string_view secret);

  bool areMasked() const { return areMasked_; }

  /// Returns the text with every secret in it, in any case of its ASCII letters, replaced by the mask.
  std::string masked(std::string_view text) const;

  /// Returns a body without the secrets in it: in JSON the members that hold one have the mask as value, whatever they
  /// hold, and all else has the known secrets masked. Of a long array of numbers remains how many they are, of deep
  /// nesting its outer levels.
  std::string maskedBody(std::string_view body) const;

 private:
  const bool areMasked_;
  mutable std::mutex mutex_;
  std::vector<std::string> secrets_;  // Longest first.
};

}  // namespace signin
