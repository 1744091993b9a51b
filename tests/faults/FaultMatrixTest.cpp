// Each service call meets each fault on a real connection, and must come to what docs/errors.md says.

#include <array>
#include <atomic>
#include <cctype>
#include <chrono>
#include <csignal>
#include <future>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
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

/// What the page promises for a call: the call's own cell, or the page's rule for the row's one outcome.
/// `finished` of the login learns nothing of the report after it.
std::string promise(const Row& row, const std::string& call) {
  if (call == "device report") return "success";
  if (const auto own = row.find(call); own != row.end()) return own->second;
  const std::string& outcome = row.at("outcome");
  return call == "requestLogin" && outcome != "success" ? "stops" : outcome;
}

/// How an application makes its calls.
enum class Way { plain, withWords, withWordsAwaitedElsewhere };
constexpr std::array ways = {Way::plain, Way::withWords, Way::withWordsAwaitedElsewhere};

/// The application's words for a call that would stop the process.
const std::string failureWords = "Keine Verbindung – \"später\"";

/// The outcome of a call that timed out before the service had its request.
const std::string notMet = "the fault was not met";

/// Returns what the call comes to, in the page's words; what is not in order, in others. The fault's times
/// are multiplied by `times`.
std::string outcome(const std::string& call, const Fault& fault, Way way, int times) {
  LoopbackServer sound([](const auto&) { return LoopbackServer::Answer{reply(R"({"code":0,"msg":"ok"})")}; });
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
                                    std::to_string(sound.port()),
                                    isElsewhere ? fault.elsewhere : "127.0.0.1",
                                    std::to_string(isElsewhere ? closedPort : faulty.port()),
                                    std::to_string(fault.idleTimeout.count() * times),
                                    std::to_string(fault.totalTimeout.count() * times),
                                    std::to_string(bodyLimit),
                                    std::to_string(fault.calls)};
  if (way != Way::plain) words.push_back(failureWords);
  if (way == Way::withWordsAwaitedElsewhere) words.push_back("http://own.example:80/");
  const Ended ended = run(std::move(words));

  std::set<std::string> outcomes;
  int finished = 0;
  std::istringstream output(ended.output);
  for (std::string line; std::getline(output, line);) {
    if (line.starts_with("orvane: requestPictureCode: ")) continue;  // Its trace of transport errors.
    outcomes.insert(line);
    ++finished;
  }
  const bool hasStopped = WIFSIGNALED(ended.status) && WTERMSIG(ended.status) == SIGABRT && finished == 0 &&
                          ended.errors.find('\n') + 1 == ended.errors.size() &&
                          ended.errors.starts_with("orvane: " + call + ": ");
  constexpr long tooMuchMemory = 512 << 10;  // With a sanitizer's share.
  if (!isElsewhere && requests < (hasStopped ? 1 : fault.calls)) return notMet;
  if (ended.memory > tooMuchMemory) return std::to_string(ended.memory) + " KiB of memory";
  if (hasStopped) return "stops";
  if (ended.status == 0 && ended.errors.empty() && finished == fault.calls && outcomes.size() == 1)
    return *outcomes.begin();
  std::string disorder = "status " + std::to_string(ended.status) + ", finished " + std::to_string(finished);
  for (const std::string& text : outcomes) disorder.append(", ").append(text);
  return disorder.append("\n").append(ended.errors);
}

/// What becomes of the promise of a row once the application has words: the error tells its cause.
std::string withWords(const std::string& promise, const Row& row, const std::string& call) {
  if (promise != "stops") return promise;
  const auto cause = row.find("outcome");
  return failureWords + (call == "requestLogin" ? " 1 for " : " -1 for ") +
         (cause == row.end() ? "com.brovent.error -1" : cause->second);
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

const std::vector<Row>& rows() {
  static const std::vector<Row> all = rowsOfTheErrorsPage(rowName);
  return all;
}

/// Its parameter is the number of a row.
class FaultMatrix : public testing::TestWithParam<std::size_t> {};

TEST_P(FaultMatrix, IsAsThePageSaysAndNeverStopsWithWords) {
  const std::vector<Fault> faults = makeFaults();
  ASSERT_EQ(rows().size(), faults.size());
  const Row& row = rows()[GetParam()];
  const Fault& fault = faults[GetParam()];
  ASSERT_EQ(row.at(rowName), fault.name);
  for (const Way way : ways) {
    const auto expected = [&](const std::string& call) {
      return way == Way::plain ? promise(row, call) : withWords(promise(row, call), row, call);
    };
    std::vector<std::future<std::string>> seen;
    for (const std::string call : calls) {
      seen.push_back(std::async(std::launch::async,
                                [&, call] { return outcomeInTime(call, fault, way, expected(call)); }));
    }
    for (std::size_t i = 0; i < calls.size(); ++i)
      EXPECT_EQ(seen[i].get(), expected(calls[i])) << calls[i] << ", way " << static_cast<int>(way);
  }
}

INSTANTIATE_TEST_SUITE_P(Rows, FaultMatrix, testing::Range(std::size_t{0}, rows().size()),
                         [](const auto& row) {
                           std::string name = rows()[row.param].at(rowName);
                           for (char& c : name) c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
                           return name;
                         });

}  // namespace
}  // namespace orvane::test
