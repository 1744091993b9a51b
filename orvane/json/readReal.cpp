#include "orvane/json/readReal.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>

namespace orvane {

// std::strtod rounds correctly but expects the locale's decimal point, std::from_chars is not everywhere yet:
// so the number is given to std::strtod without a point, its exponent being moved instead.
std::optional<double> readReal(std::string_view number) {
  const std::size_t exponentAt = std::min(number.find_first_of("eE"), number.size());
  std::string_view exponentText = number.substr(exponentAt);
  if (!exponentText.empty()) exponentText.remove_prefix(1);
  if (exponentText.starts_with('+')) exponentText.remove_prefix(1);

  // Beyond this an exponent outweighs any digits that fit into memory.
  constexpr std::int64_t greatest = std::numeric_limits<std::int64_t>::max() / 2;
  std::int64_t exponent = 0;
  const char* const end = exponentText.data() + exponentText.size();
  if (std::from_chars(exponentText.data(), end, exponent).ec == std::errc::result_out_of_range)
    exponent = exponentText.starts_with('-') ? -greatest : greatest;
  exponent = std::clamp(exponent, -greatest, greatest);

  std::string digits(number.substr(0, exponentAt));
  if (const std::size_t point = digits.find('.'); point != digits.npos) {
    exponent -= static_cast<std::int64_t>(digits.size() - point - 1);
    digits.erase(point, 1);
  }
  const double real = std::strtod((digits + 'e' + std::to_string(exponent)).c_str(), nullptr);
  if (std::isinf(real)) return std::nullopt;
  return real;
}

}  // namespace orvane
