#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "tools/devservice/Codes.h"
#include "tools/devservice/Message.h"

namespace devservice {

/// The four calls, numbered as the reserved numbers count them.
enum class Call { picture = 1, code, login, submission };

/// A reply in the making.
struct Draft;

/// Something that is wrong with a reply on demand.
struct Fault {
  int number;
  std::string_view name;  ///< A word or two.
  std::string_view text;
  void (*spoil)(Draft& draft);  ///< Null for the refusal, which comes instead of the call.
};

/// Mobile numbers that start like this, then have the digit of the call the fault hits (0 is all of them) and
/// the two digits of the fault, demand that fault. Other numbers with this start are ordinary.
inline constexpr std::string_view faultNumberPrefix = "+99900000";

/// Size of the "data" of the fault that makes it too large, in bytes.
inline constexpr std::size_t oversizedDataSize = std::size_t{1} << 20;

/// Every fault, by number.
std::span<const Fault> faultTable();

/// The fault the number demands of that call, or null.
const Fault* demandedFault(std::string_view mobile, Call call);

/// The envelope as a reply, spoiled by the fault if there is one.
Reply makeReply(const Envelope& envelope, const Fault* fault = nullptr);

/// The refusal for that reason, as a reply with that HTTP status.
Reply makeRefusal(int status, Code reason, std::string_view detail = {});

}  // namespace devservice
