#include "tools/signin/ObservedSession.h"

#include <chrono>
#include <cstdio>
#include <ctime>
#include <string>
#include <utility>

#include "tools/signin/Terminal.h"
#include "tools/support/milliseconds.h"

namespace signin {
namespace {

/// Returns the local time as a comment of a shell script.
std::string timeText() {
  const auto now = std::chrono::system_clock::now();
  const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  std::tm local{};
  localtime_r(&seconds, &local);
  char text[32];
  const std::size_t size = std::strftime(text, sizeof text, "# %H:%M:%S.", &local);
  std::snprintf(text + size, sizeof text - size, "%03d", static_cast<int>(support::milliseconds(now) % 1000));
  return text;
}

support::Exchange exchangeOf(const orvane::URLRequest& request) {
  support::Exchange exchange{
      .start = std::chrono::system_clock::now(), .method = request.method(), .url = request.url()};
  for (const orvane::HeaderField& field : request.headers()) {
    exchange.headers.emplace_back(field.name, field.value);
  }
  if (request.body()) exchange.requestBody.emplace(request.body()->begin(), request.body()->end());
  exchange.requestSize = exchange.requestBody.value_or("").size();
  return exchange;
}

void addOutcome(const orvane::DataTaskResult& result, support::Exchange& exchange) {
  if (result.error) {
    exchange.comment = orvane::errorDescription(*result.error);
    return;
  }
  exchange.status = result.response->statusCode;
  exchange.replyBody.emplace(result.body->begin(), result.body->end());
  exchange.replySize = exchange.replyBody->size();
}

}  // namespace

ObservedSession::ObservedSession(const orvane::HostSessionConfiguration& configuration,
                                 std::shared_ptr<const Trace> trace, std::shared_ptr<HarLog> har)
    : inner_(configuration), trace_(std::move(trace)), har_(std::move(har)) {}

void ObservedSession::startDataTask(orvane::URLRequest request, orvane::DataTaskHandler handler) {
  using Clock = std::chrono::steady_clock;
  if (trace_) Terminal::writeError(timeText() + "\n" + trace_->requestLine(request));
  auto observed = [handler = std::move(handler), trace = trace_, har = har_, exchange = exchangeOf(request),
                   start = Clock::now()](orvane::DataTaskResult result) mutable {
    Terminal::hideWaiting();
    exchange.duration = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
    if (trace) {
      Terminal::writeError(timeText() + " " + trace->replyLine(exchange.url, result, exchange.duration));
    }
    if (har) {
      addOutcome(result, exchange);
      har->add(std::move(exchange));
    }
    if (handler) handler(std::move(result));
  };
  inner_.startDataTask(std::move(request), std::move(observed));
}

}  // namespace signin
