#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::bench {

/// One of several ways to do the same.
struct Contestant {
  std::string name;
  std::function<double()> round;  ///< Does it once or many times. Returns one figure.
};

/// What a contestant measured, one figure for each round.
using Figures = std::vector<double>;

inline constexpr int usualRounds = 9;

/// Lets the contestants take turns, starting each round with another, after one round that does not count.
/// The figures are in the order of the contestants.
std::vector<Figures> takeTurns(const std::vector<Contestant>& contestants, int rounds = usualRounds);

/// The nanoseconds that one of `times` calls takes.
double nanosecondsEach(std::size_t times, const std::function<void()>& call);

/// The processor time of all threads, user's and system's, that one of `times` calls takes, in nanoseconds.
double processorTimeEach(std::size_t times, const std::function<void()>& call);

/// How many calls take about 20 milliseconds.
std::size_t timesForOneRound(const std::function<void()>& call);

enum class Unit { nanoseconds, bytes, count };

/// What two contestants are measured against.
struct Goal {
  enum class Form {
    share,    ///< Ours divided by theirs, at most `bound`.
    multiple  ///< Theirs divided by ours, at least `bound`.
  };
  Form form = Form::multiple;
  std::optional<double> bound = {};
};

/// What the rows of the table are about.
struct Topic {
  std::string number;  ///< The row's, as in the list of goals.
  std::string what;
  Unit unit = Unit::nanoseconds;
};

/// Prints a row of the table: ours beside theirs, both as median, least and greatest figure, the ratio as
/// median, least and greatest of the rounds' ratios, and whether its median meets the goal.
void compare(const Topic& topic, const Figures& ours, std::string_view theirName, const Figures& theirs,
             Goal goal);

/// Prints a row for a goal in absolute terms, or for a figure without one.
void state(const Topic& topic, const Figures& ours, std::optional<double> atMost);

double median(Figures figures);

}  // namespace orvane::bench
