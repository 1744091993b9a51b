#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace devservice {

struct ReplyDraft;

/// Something that can be made to go wrong with a reply.
struct Fault {
  int number;
  std::string_view group;  ///< The layer that it hits: "network", "HTTP" or "reply".
  std::string_view name;   ///< One to three words.
  std::string_view text;
  void (*corrupt)(ReplyDraft& draft);  ///< Null for the refusal, which keeps the call from being done.
};

/// Number of the fault that delays the reply.
inline constexpr int lateFault = 1;

/// The size in bytes to which the fault "1 MiB" pads "data".
inline constexpr std::size_t oversizedDataSize = std::size_t{1} << 20;

/// Returns all faults.
std::span<const Fault> faultTable();

/// Returns the fault of that number, or null.
const Fault* findFault(int number);

}  // namespace devservice
