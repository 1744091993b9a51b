#include "tools/devservice/RequestedFault.h"

#include <optional>

namespace devservice {
namespace {

/// Returns the number that the digits make. Returns nullopt if one of the characters is not a digit.
std::optional<int> numberOf(std::string_view digits) {
  int number = 0;
  for (const char c : digits) {
    if (c < '0' || c > '9') return std::nullopt;
    number = number * 10 + (c - '0');
  }
  return number;
}

}  // namespace

RequestedFault requestedFaultOf(std::string_view mobile, Call call) {
  if (!mobile.starts_with(faultNumberPrefix)) return {};
  const std::string_view digits = mobile.substr(faultNumberPrefix.size());
  if (digits.size() != 3 && digits.size() != 7) return {};
  const auto hit = numberOf(digits.substr(0, 1));
  const auto fault = numberOf(digits.substr(1, 2));
  const auto hundredths = numberOf(digits.substr(3));
  if (!hit || !fault || !hundredths || (*hit != 0 && *hit != static_cast<int>(call))) return {};
  if (digits.size() == 3) return {findFault(*fault)};
  const std::chrono::milliseconds delay{*hundredths * 10};
  return *fault == lateFault && delay <= maxDelay ? RequestedFault{findFault(lateFault), delay}
                                                  : RequestedFault{};
}

}  // namespace devservice
