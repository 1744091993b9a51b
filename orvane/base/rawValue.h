#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

#include "orvane/base/Export.h"

namespace orvane {

/// The raw values of an enumeration's cases, in the order of their declaration. Each such enumeration
/// specialises it.
template <class E>
inline constexpr std::span<const std::string_view> rawValues;

/// Returns the raw value of a case.
template <class E>
constexpr std::string_view rawValue(E value) noexcept {
  return rawValues<E>[static_cast<std::size_t>(value)];
}

/// Returns the position of a case in the order of declaration, counted from 0.
///
/// Promised: it is the position and no mixed hash, so applications may store it. The order of cases is fixed.
template <class E>
constexpr std::size_t hashValue(E value) noexcept {
  return static_cast<std::size_t>(value);
}

/// Returns the case whose raw value is `raw`, or nullopt if there is none.
template <class E>
constexpr std::optional<E> fromRawValue(std::string_view raw) noexcept {
  const auto found = std::find(rawValues<E>.begin(), rawValues<E>.end(), raw);
  if (found == rawValues<E>.end()) return std::nullopt;
  return static_cast<E>(found - rawValues<E>.begin());
}

}  // namespace orvane
