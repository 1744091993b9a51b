#include "adapters/host/TransferEngine.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <variant>

#include "adapters/host/ExitGate.h"
#include "adapters/host/Redirect.h"
#include "adapters/host/SessionError.h"
#include "orvane/base/lowerASCII.h"
#include "orvane/platform/URLParts.h"

namespace orvane {
namespace {

/// How many destinations without tasks are kept.
constexpr std::size_t keptDestinations = 8;

/// How long a destination keeps its connections while others wait for one.
constexpr std::chrono::milliseconds turn(100);

void appendAddress(std::string& line, const std::string& host, std::uint16_t port) {
  const bool isBare = host.find(':') != host.npos && !host.starts_with('[');
  line.append(isBare ? "[" : "").append(host).append(isBare ? "]:" : ":").append(std::to_string(port));
}

CurlSlist makeReroutes(const std::vector<Reroute>& reroutes) {
  CurlSlist list;
  for (const Reroute& reroute : reroutes) {
    std::string line;
    appendAddress(line, reroute.host, reroute.port);
    line.push_back(':');
    appendAddress(line, reroute.toHost, reroute.toPort);
    list.append(line);
  }
  return list;
}

std::string destinationKey(const URLParts& parts) {
  std::string key(parts.scheme);
  key.append("://").append(parts.host).append(":").append(parts.portOrDefault());
  std::transform(key.begin(), key.end(), key.begin(), lowerASCII);
  return key;
}

}  // namespace

TransferEngine::TransferEngine(HostSessionConfiguration configuration)
    : context_{std::move(configuration)}, multi_(std::in_place, context_.configuration.maximumConnections) {
  context_.reroutes = makeReroutes(context_.configuration.reroutes);
}

bool TransferEngine::advance(std::vector<HandlerCall>& due) {
  context_.now = Clock::now();
  {
    const ExitGate::Pass pass(curlGate());
    giveTurns();
    multi_->perform();
    while (const auto finished = multi_->nextFinished()) {
      Transfer* transfer = nullptr;
      curl_easy_getinfo(finished->handle, CURLINFO_PRIVATE, &transfer);
      settle(*transfer, finished->result);
    }
    giveUpOverdue();
  }
  due.swap(due_);
  return !due.empty() || (!turns_.empty() && isConnectionFree());
}

void TransferEngine::close() {
  const ExitGate::Pass pass(curlGate());
  idle_.clear();
  multi_.reset();
  context_.cookies.close();
}

void TransferEngine::accept(DataTask&& task) {
  const URLParts parts = splitURL(task.request.url());
  if (!isSupportedScheme(parts.scheme)) {
    fail(std::move(task), SessionErrorCode::unsupportedURL);
  } else if (parts.host.empty() || task.request.url().find('\0') != std::string::npos) {
    fail(std::move(task), SessionErrorCode::badURL);
  } else {
    const auto place = destinations_.try_emplace(destinationKey(parts)).first;
    auto& waiting = place->second.waiting;
    nextDeadline_ = std::min(nextDeadline_, task.deadline);
    // The end is right, except for a task that was redirected, which is older than those that have come
    // since.
    waiting.insert(waiting.end(), std::move(task));
    ++waiting_;
    queueUp(place);
  }
}

bool TransferEngine::isConnectionFree() const noexcept {
  return running_.size() < context_.configuration.maximumConnections;
}

/// Puts the destination in line for a turn if it can use a connection. Forgets it if it has no tasks.
void TransferEngine::queueUp(Destinations::iterator place) {
  Destination& destination = place->second;
  if (destination.isInTurn) return;
  if (!destination.waiting.empty() && destination.running < context_.configuration.connectionsPerHost) {
    turns_.push_back(place);
    destination.isInTurn = true;
  } else if (destination.waiting.empty() && destination.running == 0 &&
             destinations_.size() > keptDestinations) {
    destinations_.erase(place);
  }
}

/// Returns the task with the earliest deadline.
DataTask TransferEngine::takeWaiting(Destination& destination) {
  --waiting_;
  return std::move(destination.waiting.extract(destination.waiting.begin()).value());
}

void TransferEngine::giveTurns() {
  while (!turns_.empty() && isConnectionFree()) {
    const auto place = turns_.front();
    turns_.pop_front();
    place->second.isInTurn = false;
    place->second.turnEnd = context_.now + turn;
    if (!place->second.waiting.empty()) admit(place);
    queueUp(place);
  }
}

/// Gives the destination's oldest task to curl.
void TransferEngine::admit(Destinations::iterator place) {
  if (idle_.empty()) idle_.push_back(std::make_unique<Transfer>(context_));
  std::unique_ptr<Transfer> transfer = std::move(idle_.back());
  idle_.pop_back();
  leastIdle_ = std::min(leastIdle_, idle_.size());
  if (const CURLcode result = transfer->prepare(takeWaiting(place->second)); result != CURLE_OK) {
    fail(transfer->takeTask(), sessionErrorCode(result), curl_easy_strerror(result));
  } else if (!multi_->add(transfer->handle())) {
    fail(transfer->takeTask(), SessionErrorCode::cannotConnectToHost, "No memory or descriptor is free");
  } else {
    running_.push_back({std::move(transfer), place});
    ++place->second.running;
  }
}

void TransferEngine::giveUpOverdue() {
  std::vector<Transfer*> overdue;
  for (const Running& running : running_) {
    if (running.transfer->end() <= context_.now) overdue.push_back(running.transfer.get());
  }
  for (Transfer* transfer : overdue) settle(*transfer, CURLE_OPERATION_TIMEDOUT);
  if (context_.now < nextDeadline_) return;
  nextDeadline_ = Clock::time_point::max();
  for (auto& [key, destination] : destinations_) {
    const auto& waiting = destination.waiting;
    while (!waiting.empty() && waiting.begin()->deadline <= context_.now)
      fail(takeWaiting(destination), SessionErrorCode::timedOut);
    if (!waiting.empty()) nextDeadline_ = std::min(nextDeadline_, waiting.begin()->deadline);
  }
}

void TransferEngine::wait() {
  Clock::time_point next = std::min(context_.now + std::chrono::hours(1), nextDeadline_);
  for (const Running& running : running_) next = std::min(next, running.transfer->end());
  multi_->wait(next);
}

void TransferEngine::settle(Transfer& transfer, CURLcode curlResult) {
  const int statusCode = transfer.statusCode();
  const std::string location(curlResult == CURLE_OK ? transfer.redirectLocation() : "");
  DataTaskResult result = transfer.finish(curlResult);
  DataTask task = transfer.takeTask();
  context_.cookies.keepWithinBounds(transfer.handle());
  const auto place = release(transfer);
  // The connection serves its host while that one's turn lasts, since another host would need a new one.
  const bool isItsTurn = curlResult == CURLE_OK && context_.now < place->second.turnEnd;
  if (isItsTurn && !place->second.waiting.empty()) admit(place);
  queueUp(place);
  if (location.empty()) {
    report(std::move(task), std::move(result));
  } else {
    follow(std::move(task), statusCode, location);
  }
}

/// Keeps the transfer for a later task, and as many others as were lately needed. Returns its destination.
TransferEngine::Destinations::iterator TransferEngine::release(const Transfer& transfer) {
  const auto running = std::find_if(running_.begin(), running_.end(),
                                    [&](const Running& each) { return each.transfer.get() == &transfer; });
  const Destinations::iterator place = running->destination;
  multi_->remove(transfer.handle());
  --place->second.running;
  idle_.push_back(std::move(running->transfer));
  running_.erase(running);
  if (++released_ > idle_.size() + running_.size()) {
    idle_.erase(idle_.begin(), idle_.begin() + static_cast<std::ptrdiff_t>(leastIdle_));
    leastIdle_ = idle_.size();
    released_ = 0;
  }
  return place;
}

void TransferEngine::follow(DataTask&& task, int statusCode, const std::string& location) {
  if (++task.redirects > maximumRedirects) {
    fail(std::move(task), SessionErrorCode::tooManyRedirects);
    return;
  }
  auto next = redirect(task.request, statusCode, location);
  if (const auto* code = std::get_if<SessionErrorCode>(&next)) {
    fail(std::move(task), *code);
    return;
  }
  task.request = std::move(*std::get_if<URLRequest>(&next));
  accept(std::move(task));
}

void TransferEngine::report(DataTask&& task, DataTaskResult result) {
  due_.push_back({std::move(task.handler), std::move(result)});
}

void TransferEngine::fail(DataTask&& task, SessionErrorCode code, std::string_view detail) {
  ErrorPtr error = makeSessionError(code, task.request.url(), detail);
  report(std::move(task), {std::nullopt, std::nullopt, std::move(error)});
}

}  // namespace orvane
