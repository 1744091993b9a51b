// Each service call meets each fault on a real connection, and must come to what docs/errors.md says.

#include <array>
#include <atomic>
#include <cctype>
#include <chrono>
#include <csignal>
#include <future>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <utility>
#include <vector>

#include "tests/faults/Faults.h"
#include "tests/support/errorsPage.h"
#include "tests/support/spawn.h"

namespace orvane::test {
namespace {

constexpr std::array calls = {"requestPictureCode", "requestCode", "requestLogin", "device report"};

const std::string rowName = "what happens";
const std::vector<Row> rows = rowsOfTheErrorsPage(rowName);

/// How an application makes its calls.
enum class Way { plain, withWords, withWordsAwaitedElsewhere };
constexpr std::array ways = {Way::plain, Way::withWords, Way::withWordsAwaitedElsewhere};

/// The application's words for a call that would stop the process.
const std::string failureWords = "Keine Verbindung – \"später\"";

/// What the page promises for a call: the call's own cell, or the page's rule for the row's one outcome.
/// `finished` of the login learns nothing of the report after it. With words no call stops the process: the
/// error tells its cause.
std::string promise(const Row& row, const std::string& call, Way way) {
  if (call == "device report") return "success";
  const bool isLogin = call == "requestLogin";
  const auto own = row.find(call);
  const std::string& outcome = own == row.end() ? row.at("outcome") : own->second;
  const bool hasNoReply = own == row.end() && outcome != "success";
  if (outcome != "stops" && !(isLogin && hasNoReply)) return outcome;
  if (way == Way::plain) return "stops";
  return failureWords + (isLogin ? " 1" : " -1") + " for " + (hasNoReply ? outcome : "com.brovent.error -1");
}

/// The outcome of a call that timed out before the service had its request.
const std::string notMet = "the fault was not met";

/// Returns what the call comes to, in the page's words; what is not in order, in others. The fault's times
/// are multiplied by `times`.
std::string outcome(const std::string& call, const Fault& fault, Way way, int times) {
  std::atomic<int> requests = 0;
  LoopbackServer faulty([&](const auto&) {
    LoopbackServer::Answer answer = fault.script(requests++);
    answer.pace *= times;
    return answer;
  });
  const bool isElsewhere = !fault.elsewhere.empty();
  constexpr std::uint16_t closedPort = 1;
  std::vector<std::string> words = {ONE_CALL_PROGRAM,
                                    call,
                                    isElsewhere ? fault.elsewhere : "127.0.0.1",
                                    std::to_string(isElsewhere ? closedPort : faulty.port()),
                                    std::to_string(fault.idleTimeout.count() * times),
                                    std::to_string(fault.totalTimeout.count() * times),
                                    std::to_string(fault.calls)};
  if (way != Way::plain) words.push_back(failureWords);
  if (way == Way::withWordsAwaitedElsewhere) words.push_back("http://own.example:80/");
  const Ended ended = run(std::move(words));

  const std::string line = ended.errors.substr(0, ended.errors.find('\n'));
  const bool hasStopped = WIFSIGNALED(ended.status) && WTERMSIG(ended.status) == SIGABRT &&
                          ended.errors == line + "\n" && line.starts_with("orvane: " + call + ": ");
  constexpr long tooMuchMemory = 512 << 10;  // With a sanitizer's share.
  if (!isElsewhere && requests < (hasStopped ? 1 : fault.calls)) return notMet;
  if (ended.memory > tooMuchMemory) return std::to_string(ended.memory) + " KiB of memory";
  if (hasStopped) return "stops";
  std::string inOrder;
  for (int i = 0; i < fault.calls; ++i) inOrder += line + "\n";
  if (ended.status == 0 && ended.errors == inOrder) return line;
  return "status " + std::to_string(ended.status) + "\n" + ended.errors;
}

/// Returns outcome(). Doubles the times while the machine is too busy for them: the service had no request in
/// time, or sent a slow reply too late. A call that times out wrongly does so with all of them.
std::string outcomeInTime(const std::string& call, const Fault& fault, Way way, const std::string& expected) {
  const bool mayBeLate = fault.idleTimeout < std::chrono::minutes(1) && expected == "success";
  std::string seen;
  for (int times = 1; times < 500; times *= 2) {
    seen = outcome(call, fault, way, times);
    if (seen != notMet && (!mayBeLate || seen == expected)) break;
  }
  return seen;
}

/// Its parameter is the number of a row.
class FaultMatrix : public testing::TestWithParam<std::size_t> {};

TEST_P(FaultMatrix, IsAsThePageSaysAndNeverStopsWithWords) {
  const std::vector<Fault> faults = makeFaults();
  ASSERT_EQ(rows.size(), faults.size());
  const Row& row = rows[GetParam()];
  const Fault& fault = faults[GetParam()];
  ASSERT_EQ(row.at(rowName), fault.name);
  // Besides its name, a row has one outcome, or one for each call but the report.
  EXPECT_EQ(row.size(), row.contains("outcome") ? 2 : calls.size());
  for (const Way way : ways) {
    std::vector<std::future<void>> checks;
    for (const std::string call : calls) {
      checks.push_back(std::async(std::launch::async, [&, call] {
        const std::string promised = promise(row, call, way);
        EXPECT_EQ(outcomeInTime(call, fault, way, promised), promised)
            << call << ", way " << static_cast<int>(way);
      }));
    }
    for (std::future<void>& check : checks) check.get();  // Throws what the check threw.
  }
}

INSTANTIATE_TEST_SUITE_P(Rows, FaultMatrix, testing::Range(std::size_t{0}, rows.size()), [](const auto& row) {
  std::string name = rows[row.param].at(rowName);
  for (char& c : name) c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
  return name;
});

}  // namespace
}  // namespace orvane::test
