#pragma once

#include <chrono>
#include <cstddef>
#include <span>
#include <string_view>

#include "tools/devservice/Codes.h"
#include "tools/devservice/Limits.h"
#include "tools/devservice/Message.h"

namespace devservice {

/// The four calls, numbered as the reserved numbers count them.
enum class Call { picture = 1, code, login, submission };

/// A reply in the making.
struct Draft;

/// Something that is wrong with a reply on demand.
struct Fault {
  int number;
  std::string_view group;  ///< What it hits: "network", "HTTP" or "reply".
  std::string_view name;   ///< A word or two.
  std::string_view text;
  void (*spoil)(Draft& draft);  ///< Null for the refusal, which comes instead of the call.
};

/// A fault, or null for none, and how late its reply is, where it is late.
struct Demand {
  const Fault* fault = nullptr;
  std::chrono::milliseconds delay = usualDelay;
};

/// Mobile numbers that start like this, then have the digit of the call the fault hits (0 is all of them) and
/// the two digits of the fault, demand that fault. Those of the late reply may have four more digits: the delay
/// in hundredths of a second. Other numbers with this start are ordinary.
inline constexpr std::string_view faultNumberPrefix = "+99900000";

/// Size of the "data" of the fault that makes it too large, in bytes.
inline constexpr std::size_t oversizedDataSize = std::size_t{1} << 20;

/// Every fault, by number.
std::span<const Fault> faultTable();

/// The fault of that number, or null.
const Fault* findFault(int number);

/// The fault that comes late.
inline constexpr int lateFault = 1;

/// What the mobile number demands of that call.
Demand demandOf(std::string_view mobile, Call call);

/// The envelope as a reply, spoiled as demanded.
Reply makeReply(const Envelope& envelope, const Demand& demand = {});

/// The refusal for that reason, as a reply with that HTTP status.
Reply makeRefusal(int status, Code reason, std::string_view detail = {});

}  // namespace devservice
