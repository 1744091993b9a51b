#pragma once

#include <cstddef>

namespace devservice {

/// Returns true if that member of the rows is 1, 2, 3 and so on.
template <class Row, std::size_t size, class Number>
constexpr bool countsFromOne(const Row (&table)[size], Number Row::*member) {
  for (std::size_t i = 0; i < size; ++i) {
    if (table[i].*member != static_cast<Number>(i + 1)) return false;
  }
  return true;
}

}  // namespace devservice
