#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace orvane::bench {

/// What one call costs, in nanoseconds.
struct Cost {
  double wall = 0;
  double processor = 0;  ///< Of all threads of this process, in the program and in the kernel.
};

/// Runs `work` `times` times, which makes `callsEach` calls each time. Returns the mean cost of a call.
Cost costOf(std::size_t times, std::size_t callsEach, const std::function<void()>& work);

/// One figure for each round.
using Figures = std::vector<double>;

struct Costs {
  Figures wall;
  Figures processor;
};

/// Lets the contestants, which are ways to do the same, take turns for nine rounds after one that does not
/// count. Each round starts with another of them. Returns their costs, in their order.
std::vector<Costs> takeTurns(const std::vector<std::function<Cost()>>& contestants);

/// A bound for a ratio of the library's figures and a peer's.
struct Goal {
  enum class Ratio {
    share,   ///< The library's figure divided by the peer's, at most `bound`.
    speedup  ///< The peer's figure divided by the library's, at least `bound`.
  };
  Ratio ratio;
  std::optional<double> bound = {};
};

/// Whom the library is compared with.
struct Peer {
  std::string name;
  Figures figures;
  Goal goal;
};

enum class Unit { nanoseconds, bytes };

/// Prints rows of the table: the library's figures, then each peer's, as median, least and greatest. A ratio
/// is the median of the rounds' own ratios. `atMost` is a goal for the library's median, in bytes.
void printRows(const std::string& what, const Figures& ours, const std::vector<Peer>& peers,
               Unit unit = Unit::nanoseconds, std::optional<double> atMost = {});

/// Returns the median as a text with its unit of time.
std::string medianTime(const Figures& figures);

}  // namespace orvane::bench
