#include "bench/Rounds.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>

namespace orvane::bench {
namespace {

struct Scale {
  double unit;
  const char* name;
};

Scale scaleFor(double figure, Unit unit) {
  switch (unit) {
    case Unit::nanoseconds:
      if (figure >= 1e6) return {1e6, " ms"};
      return figure >= 1e3 ? Scale{1e3, " µs"} : Scale{1, " ns"};
    case Unit::bytes:
      return figure >= 1e4 ? Scale{1024, " KB"} : Scale{1, " B"};
    case Unit::count:
      return {1, ""};
  }
  return {1, ""};
}

std::string formatted(double number) {
  const int decimals = number >= 100 ? 0 : number >= 10 ? 1 : 2;
  char text[32];
  std::snprintf(text, sizeof text, "%.*f", decimals, number);
  return text;
}

/// As it is, without decimals that say nothing.
std::string plain(double figure, Scale scale) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", figure / scale.unit);
  return std::string(text) + scale.name;
}

/// "MEDIAN (LEAST–GREATEST)".
std::string summary(const Figures& figures, Scale scale) {
  const auto [least, greatest] = std::minmax_element(figures.begin(), figures.end());
  std::string text = formatted(median(figures) / scale.unit) + scale.name;
  if (*least == *greatest) return text;
  return text + " (" + formatted(*least / scale.unit) + "–" + formatted(*greatest / scale.unit) + ")";
}

std::string summary(const Figures& figures, Unit unit) {
  return summary(figures, scaleFor(median(figures), unit));
}

/// `excess` is by which factor the goal was missed, not above 1 where it was met.
std::string verdict(double excess) {
  return excess <= 1 ? "met" : "**missed by " + formatted((excess - 1) * 100) + " %**";
}

void printRow(const Topic& topic, std::initializer_list<std::string> cells) {
  std::printf("| %s | %s |", topic.number.c_str(), topic.what.c_str());
  for (const std::string& cell : cells) std::printf(" %s |", cell.c_str());
  std::printf("\n");
  std::fflush(stdout);
}

}  // namespace

double median(Figures figures) {
  const auto middle = figures.begin() + static_cast<std::ptrdiff_t>(figures.size() / 2);
  std::nth_element(figures.begin(), middle, figures.end());
  return *middle;
}

std::vector<Figures> takeTurns(const std::vector<Contestant>& contestants, int rounds) {
  std::vector<Figures> figures(contestants.size());
  for (const Contestant& contestant : contestants) contestant.round();
  for (std::size_t round = 0; round < static_cast<std::size_t>(rounds); ++round) {
    for (std::size_t turn = 0; turn < contestants.size(); ++turn) {
      const std::size_t which = (round + turn) % contestants.size();
      figures[which].push_back(contestants[which].round());
    }
  }
  return figures;
}

double nanosecondsEach(std::size_t times, const std::function<void()>& call) {
  const auto start = std::chrono::steady_clock::now();
  for (std::size_t i = 0; i < times; ++i) call();
  const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - start;
  return taken.count() / static_cast<double>(times);
}

double processorTimeEach(std::size_t times, const std::function<void()>& call) {
  const auto now = [] {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
  };
  const double start = now();
  for (std::size_t i = 0; i < times; ++i) call();
  return (now() - start) / static_cast<double>(times);
}

std::size_t timesForOneRound(const std::function<void()>& call) {
  constexpr double wanted = 20e6;
  for (std::size_t times = 1;; times *= 4) {
    const double each = nanosecondsEach(times, call);
    if (each * static_cast<double>(times) < wanted / 4) continue;
    return std::max<std::size_t>(1, static_cast<std::size_t>(wanted / each));
  }
}

void compare(const Topic& topic, const Figures& ours, std::string_view theirName, const Figures& theirs,
             Goal goal) {
  const bool isShare = goal.form == Goal::Form::share;
  Figures ratios(ours.size());
  std::transform(ours.begin(), ours.end(), theirs.begin(), ratios.begin(),
                 [&](double our, double their) { return isShare ? our / their : their / our; });
  std::string goalText = "–";
  std::string judgement = "–";
  if (goal.bound) {
    goalText = (isShare ? "≤ " : "≥ ") + plain(*goal.bound, {1, ""});
    judgement = verdict(isShare ? median(ratios) / *goal.bound : *goal.bound / median(ratios));
  }
  printRow(topic, {summary(ours, topic.unit), std::string(theirName), summary(theirs, topic.unit),
                   summary(ratios, Scale{1, isShare ? "" : "×"}), goalText, judgement});
}

void state(const Topic& topic, const Figures& ours, std::optional<double> atMost) {
  printRow(topic, {summary(ours, topic.unit), "", "", "",
                   atMost ? "≤ " + plain(*atMost, scaleFor(*atMost, topic.unit)) : "–",
                   atMost ? verdict(median(ours) / *atMost) : "–"});
}

}  // namespace orvane::bench
