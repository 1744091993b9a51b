// Each service call meets each fault on a real connection, and must come to what docs/errors.md says.

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
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

std::vector<std::string> takeLines(std::FILE* file) {
  std::rewind(file);
  std::vector<std::string> lines;
  char line[4096];
  while (std::fgets(line, sizeof line, file)) lines.emplace_back(line, std::strcspn(line, "\n"));
  std::fclose(file);
  return lines;
}

struct Ended {
  int status = -1;
  long memory = 0;  ///< The most it had, in KiB.
  std::vector<std::string> output;
  std::vector<std::string> errors;
};

Ended run(std::vector<std::string> words) {
  std::FILE* const output = std::tmpfile();
  std::FILE* const errors = std::tmpfile();
  int status = -1;
  rusage usage{};
  if (const pid_t child = spawn(std::move(words), fileno(output), fileno(errors)))
    ::wait4(child, &status, 0, &usage);
  return {status, usage.ru_maxrss, takeLines(output), takeLines(errors)};
}

/// How an application makes its calls.
enum class Way { plain, withWords, withWordsAwaitedElsewhere };
constexpr std::array ways = {Way::plain, Way::withWords, Way::withWordsAwaitedElsewhere};

/// The application's words for a call that would stop the process.
const std::string failureWords = "Keine Verbindung – \"später\"";

/// The outcome of a call that timed out before the service had its request, as on a busy machine it may.
const std::string notMet = "the fault was not met";

/// What the call comes to, in the page's words; what is not in order, in others.
std::string outcome(const std::string& call, const Fault& fault, Way way) {
  LoopbackServer sound([](const auto&) { return LoopbackServer::Answer{reply(R"({"code":0,"msg":"ok"})")}; });
  std::atomic<int> requests = 0;
  LoopbackServer faulty([&](const auto&) { return fault.script(requests++); });
  const bool isElsewhere = !fault.elsewhere.empty();
  constexpr std::uint16_t closedPort = 1;
  std::vector<std::string> words = {ONE_CALL_PROGRAM,
                                    call,
                                    std::to_string(sound.port()),
                                    isElsewhere ? fault.elsewhere : "127.0.0.1",
                                    std::to_string(isElsewhere ? closedPort : faulty.port()),
                                    std::to_string(fault.idleTimeout.count()),
                                    std::to_string(fault.totalTimeout.count()),
                                    std::to_string(bodyLimit),
                                    std::to_string(fault.calls)};
  if (way != Way::plain) words.push_back(failureWords);
  if (way == Way::withWordsAwaitedElsewhere) words.push_back("http://own.example:80/");
  const Ended ended = run(std::move(words));

  std::set<std::string> outcomes;
  int finished = 0;
  for (const std::string& line : ended.output) {
    if (line.starts_with("orvane: requestPictureCode: ")) continue;  // Its trace of transport errors.
    outcomes.insert(line);
    ++finished;
  }
  const bool hasStopped = WIFSIGNALED(ended.status) && WTERMSIG(ended.status) == SIGABRT && finished == 0 &&
                          ended.errors.size() == 1 && ended.errors[0].starts_with("orvane: " + call + ": ");
  constexpr long tooMuchMemory = 512 << 10;  // With a sanitizer's share.
  if (!isElsewhere && requests < (hasStopped ? 1 : fault.calls)) return notMet;
  if (ended.memory > tooMuchMemory) return std::to_string(ended.memory) + " KiB of memory";
  if (hasStopped) return "stops";
  if (ended.status == 0 && ended.errors.empty() && finished == fault.calls && outcomes.size() == 1)
    return *outcomes.begin();
  std::string disorder = "status " + std::to_string(ended.status) + ", finished " + std::to_string(finished);
  for (const std::string& text : outcomes) disorder.append(", ").append(text);
  for (const std::string& text : ended.errors) disorder.append("\n").append(text);
  return disorder;
}

/// What becomes of the promise of a row once the application has words: the error tells its cause.
std::string withWords(const std::string& promise, const Row& row, const std::string& call) {
  if (promise != "stops") return promise;
  const auto cause = row.find("outcome");
  return failureWords + (call == "requestLogin" ? " 1 for " : " -1 for ") +
         (cause == row.end() ? "com.brovent.error -1" : cause->second);
}

TEST(FaultMatrix, IsAsThePageSaysAndNeverStopsWithWords) {
  const std::vector<Row> rows = rowsOfTheErrorsPage(rowName);
  const std::vector<Fault> faults = makeFaults();
  ASSERT_EQ(rows.size(), faults.size());
  constexpr std::size_t rowSize = ways.size() * calls.size();
  std::vector<std::string> seen(faults.size() * rowSize);
  std::atomic<std::size_t> next = 0;
  std::vector<std::thread> workers;
  for (std::size_t i = 0; i < calls.size(); ++i) {
    workers.emplace_back([&] {
      for (std::size_t at = next++; at < seen.size(); at = next++) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        do {
          seen[at] =
              outcome(calls[at % calls.size()], faults[at / rowSize], ways[at % rowSize / calls.size()]);
        } while (seen[at] == notMet && std::chrono::steady_clock::now() < end);
      }
    });
  }
  for (std::thread& worker : workers) worker.join();
  for (std::size_t at = 0; at < seen.size(); ++at) {
    const Row& row = rows[at / rowSize];
    const std::string call = calls[at % calls.size()];
    const std::string expected = promise(row, call);
    const std::size_t way = at % rowSize / calls.size();
    ASSERT_EQ(row.at(rowName), faults[at / rowSize].name);
    EXPECT_EQ(seen[at], ways[way] == Way::plain ? expected : withWords(expected, row, call))
        << row.at(rowName) << ", " << call << ", way " << way;
  }
}

}  // namespace
}  // namespace orvane::test
