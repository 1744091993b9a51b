#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace signin {

/// What stands in place of a secret.
inline constexpr std::string_view mask = "***";

/// The texts that no trace may show. May be used from any thread.
class Secrets {
 public:
  /// Texts of less than two characters are in every line and not looked for.
  void add(std::string_view secret);

  /// The text with every secret in it, in any case of its ASCII letters, replaced by the mask.
  std::string masked(std::string_view text) const;

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> secrets_;  // longest first
};

}  // namespace signin
