#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace orvane {

/// The raw values of an enumeration with text raw values, in the order of its cases; specialised beside each.
template <class E>
inline constexpr std::span<const std::string_view> rawValues;

/// The text of a case.
template <class E>
constexpr std::string_view rawValue(E value) noexcept {
  return rawValues<E>[static_cast<std::size_t>(value)];
}

/// The place of a case in the order of declaration, from 0.
template <class E>
constexpr std::size_t hashValue(E value) noexcept {
  return static_cast<std::size_t>(value);
}

/// The case whose raw value is exactly `text`; nothing for any other text.
template <class E>
constexpr std::optional<E> fromRawValue(std::string_view text) noexcept {
  const auto found = std::find(rawValues<E>.begin(), rawValues<E>.end(), text);
  if (found == rawValues<E>.end()) return std::nullopt;
  return static_cast<E>(found - rawValues<E>.begin());
}

}  // namespace orvane
