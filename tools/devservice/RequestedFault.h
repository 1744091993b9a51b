#pragma once

#include <chrono>
#include <cstddef>
#include <iterator>
#include <string_view>

#include "tools/devservice/Fault.h"
#include "tools/devservice/Limits.h"

namespace devservice {

/// The calls. Each value is the digit that stands for the call in a mobile number that demands a fault.
enum class Call { picture = 1, code, login, submission };

/// The names of the calls, in the order of their digits, which begin with 1.
inline constexpr std::string_view callNames[] = {"picture", "code", "login", "submission"};
static_assert(std::size(callNames) == static_cast<std::size_t>(Call::submission));

/// A fault, or null for none. `delay` is used by the late reply only.
struct RequestedFault {
  const Fault* fault = nullptr;
  std::chrono::milliseconds delay = usualDelay;
};

/// Start of the mobile numbers that ask for a fault. After it come the digit of the call that the fault hits,
/// 0 for all of them, and the two digits of the fault. For the late reply four more digits may follow: the
/// delay in hundredths of a second. Any other number with this start is an ordinary one.
inline constexpr std::string_view faultNumberPrefix = "+99900000";

/// Returns what the mobile number demands of that call.
RequestedFault requestedFaultOf(std::string_view mobile, Call call);

}  // namespace devservice
