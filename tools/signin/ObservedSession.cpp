#include "tools/signin/ObservedSession.h"

#include <chrono>
#include <cstdio>
#include <ctime>
#include <string>
#include <utility>

#include "tools/signin/Terminal.h"

namespace signin {
namespace {

/// Returns the local time as a comment of a shell script.
std::string timeText() {
  const auto now = std::chrono::system_clock::now();
  const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  const auto milliseconds =
      std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count();
  std::tm local{};
  localtime_r(&seconds, &local);
  char text[32];
  const std::size_t size = std::strftime(text, sizeof text, "# %H:%M:%S.", &local);
  std::snprintf(text + size, sizeof text - size, "%03d", static_cast<int>(milliseconds % 1000));
  return text;
}

}  // namespace

ObservedSession::ObservedSession(const orvane::HostSessionConfiguration& configuration,
                                 std::shared_ptr<const Trace> trace)
    : inner_(configuration), trace_(std::move(trace)) {}

void ObservedSession::startDataTask(orvane::URLRequest request, orvane::DataTaskHandler handler) {
  using Clock = std::chrono::steady_clock;
  if (trace_) Terminal::writeError(timeText() + "\n" + trace_->requestLine(request));
  auto observed = [handler = std::move(handler), trace = trace_, url = request.url(),
                   start = Clock::now()](orvane::DataTaskResult result) {
    Terminal::hideWaiting();
    if (trace) {
      const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
      Terminal::writeError(timeText() + " " + trace->replyLine(url, result, took));
    }
    if (handler) handler(std::move(result));
  };
  inner_.startDataTask(std::move(request), std::move(observed));
}

}  // namespace signin
