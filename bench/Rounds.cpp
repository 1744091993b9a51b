#include "bench/Rounds.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <malloc.h>

namespace orvane::bench {
namespace {

struct Scale {
  double unit;
  const char* name;
};

Scale scaleFor(double figure, Unit unit) {
  if (unit == Unit::bytes) return figure >= 1e4 ? Scale{1024, " KB"} : Scale{1, " B"};
  if (figure >= 1e6) return {1e6, " ms"};
  return figure >= 1e3 ? Scale{1e3, " µs"} : Scale{1, " ns"};
}

double median(Figures figures) {
  const auto middle = figures.begin() + static_cast<std::ptrdiff_t>(figures.size() / 2);
  std::nth_element(figures.begin(), middle, figures.end());
  return *middle;
}

std::string formatted(const char* format, double number) {
  char text[32];
  std::snprintf(text, sizeof text, format, number);
  return text;
}

/// Three significant digits.
std::string rounded(double number) {
  return formatted(number >= 100 ? "%.0f" : number >= 10 ? "%.1f" : "%.2f", number);
}

/// "MEDIAN (LEAST–GREATEST)", or one figure if they are equal.
std::string summary(const Figures& figures, Scale scale) {
  const auto [least, greatest] = std::minmax_element(figures.begin(), figures.end());
  std::string text = rounded(median(figures) / scale.unit) + scale.name;
  if (*least == *greatest) return text;
  return text + " (" + rounded(*least / scale.unit) + "–" + rounded(*greatest / scale.unit) + ")";
}

std::string verdict(const std::string& goal, bool isMet) {
  return isMet ? goal + ": met" : "**" + goal + ": missed**";
}

void printRow(const std::string& what, const std::string& who, const std::string& figure,
              const std::string& ratio, const std::string& goal) {
  const std::string row = "| " + what + " | " + who + " | " + figure + " | " + ratio + " | " + goal + " |";
  std::puts(row.c_str());
  std::fflush(stdout);
}

void printPeer(const Figures& ours, const Peer& peer, Unit unit) {
  const bool isShare = peer.goal.ratio == Goal::Ratio::share;
  Figures ratios(ours.size());
  std::transform(ours.begin(), ours.end(), peer.figures.begin(), ratios.begin(),
                 [&](double our, double their) { return isShare ? our / their : their / our; });
  std::string goal;
  if (const std::optional<double> bound = peer.goal.bound) {
    goal = verdict(formatted(isShare ? "≤ %g" : "≥ %g", *bound),
                   isShare ? median(ratios) <= *bound : median(ratios) >= *bound);
  }
  printRow("", peer.name, summary(peer.figures, scaleFor(median(peer.figures), unit)),
           summary(ratios, {1, isShare ? "" : "×"}), goal);
}

double now(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

/// Makes the allocator keep what is released. Otherwise it depends on where a block happens to lie whether
/// the system takes it back and must be asked for it again, which costs more than what is measured.
void keepReleasedMemory() {
  mallopt(M_MMAP_THRESHOLD, 32 << 20);
  mallopt(M_TRIM_THRESHOLD, 256 << 20);
}

}  // namespace

Cost costOf(std::size_t times, std::size_t callsEach, const std::function<void()>& work) {
  const double processorStart = now(CLOCK_PROCESS_CPUTIME_ID);
  const double start = now(CLOCK_MONOTONIC);
  for (std::size_t i = 0; i < times; ++i) work();
  const double wall = now(CLOCK_MONOTONIC) - start;
  const double processor = now(CLOCK_PROCESS_CPUTIME_ID) - processorStart;
  const auto calls = static_cast<double>(times * callsEach);
  return {wall / calls, processor / calls};
}

std::vector<Costs> takeTurns(const std::vector<std::function<Cost()>>& contestants) {
  constexpr std::size_t rounds = 9;
  keepReleasedMemory();
  std::vector<Costs> costs(contestants.size());
  for (const auto& contestant : contestants) contestant();
  for (std::size_t round = 0; round < rounds; ++round) {
    for (std::size_t turn = 0; turn < contestants.size(); ++turn) {
      const std::size_t which = (round + turn) % contestants.size();
      const Cost cost = contestants[which]();
      costs[which].wall.push_back(cost.wall);
      costs[which].processor.push_back(cost.processor);
    }
  }
  return costs;
}

void printRows(const std::string& what, const Figures& ours, const std::vector<Peer>& peers, Unit unit,
               std::optional<double> atMost) {
  const std::string goal = atMost ? verdict(formatted("≤ %g B", *atMost), median(ours) <= *atMost) : "";
  printRow(what, "the library", summary(ours, scaleFor(median(ours), unit)), "", goal);
  for (const Peer& peer : peers) printPeer(ours, peer, unit);
}

std::string medianTime(const Figures& figures) {
  const double time = median(figures);
  const Scale scale = scaleFor(time, Unit::nanoseconds);
  return rounded(time / scale.unit) + scale.name;
}

}  // namespace orvane::bench
