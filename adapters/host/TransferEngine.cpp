#include "adapters/host/TransferEngine.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <iterator>
#include <new>
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

/// How many destinations stay known while there are no tasks for them.
constexpr std::size_t keptDestinations = 8;

/// How long a destination keeps the connections that it was given, while others wait for them.
constexpr std::chrono::milliseconds turn(100);

void initialiseCurl() {
  static const CURLcode result = [] {
    const CURLcode initialised = curl_global_init(CURL_GLOBAL_DEFAULT);
    closeGatesAtExit();
    return initialised;
  }();
  if (result != CURLE_OK) throw std::bad_alloc();
}

std::unique_ptr<CookieJar> makeCookieJar() {
  initialiseCurl();
  return std::make_unique<CookieJar>();
}

void appendAddress(std::string& line, const std::string& host, std::uint16_t port) {
  const bool isBare = host.find(':') != host.npos && !host.starts_with('[');
  line.append(isBare ? "[" : "").append(host).append(isBare ? "]:" : ":").append(std::to_string(port));
}

Slist makeReroutes(const std::vector<Reroute>& reroutes) {
  Slist list;
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
    : cookies_(makeCookieJar()),
      settings_{std::move(configuration), cookies_.get()},
      multi_(std::make_unique<Multi>(settings_.configuration.maximumConnections)) {
  settings_.reroutes = makeReroutes(settings_.configuration.reroutes);
}

bool TransferEngine::act(std::vector<HandlerCall>& due) {
  now_ = Clock::now();
  {
    const ExitGate::Pass pass(curlGate());
    admitWaiting();
    multi_->act();
    while (const auto finished = multi_->nextFinished()) {
      Transfer* transfer = nullptr;
      curl_easy_getinfo(finished->handle, CURLINFO_PRIVATE, &transfer);
      finish(*transfer, finished->result);
    }
    giveUpOverdue();
  }
  const bool isAnyOver = std::exchange(redirectedAny_, false) || !due_.empty();
  due.swap(due_);
  return isAnyOver;
}

void TransferEngine::letGo() {
  const ExitGate::Pass pass(curlGate());
  idle_.clear();
  multi_.reset();
  cookies_->close();
}

void TransferEngine::add(DataTask&& task) {
  const URLParts parts = splitURL(task.request.url());
  if (!isSupportedScheme(parts.scheme)) {
    fail(std::move(task), SessionErrorCode::unsupportedURL);
  } else if (parts.host.empty() || task.request.url().find('\0') != std::string::npos) {
    fail(std::move(task), SessionErrorCode::badURL);
  } else {
    const auto destination = destinations_.try_emplace(destinationKey(parts)).first;
    std::deque<DataTask>& waiting = destination->second.waiting;
    // A task that was redirected is older than those which have come meanwhile.
    const auto place =
        std::upper_bound(waiting.begin(), waiting.end(), task,
                         [](const DataTask& a, const DataTask& b) { return a.deadline < b.deadline; });
    nextDeadline_ = std::min(nextDeadline_, task.deadline);
    waiting.insert(place, std::move(task));
    ++waiting_;
    queueUp(destination);
  }
}

/// Lets the destination have a turn, if it can use one. Forgets it if it has nothing to do.
void TransferEngine::queueUp(Destinations::iterator place) {
  Destination& destination = place->second;
  if (destination.isInTurn) return;
  if (!destination.waiting.empty() && destination.running < settings_.configuration.connectionsPerHost) {
    turns_.push_back(place);
    destination.isInTurn = true;
  } else if (destination.waiting.empty() && destination.running == 0 &&
             destinations_.size() > keptDestinations) {
    destinations_.erase(place);
  }
}

void TransferEngine::admitWaiting() {
  while (!turns_.empty() && running_.size() < settings_.configuration.maximumConnections) {
    const auto place = turns_.front();
    turns_.pop_front();
    place->second.isInTurn = false;
    place->second.turnEnd = now_ + turn;
    if (!place->second.waiting.empty()) begin(place);
    queueUp(place);
  }
}

/// Begins the destination's oldest task.
void TransferEngine::begin(Destinations::iterator place) {
  Destination& destination = place->second;
  DataTask task = std::move(destination.waiting.front());
  destination.waiting.pop_front();
  --waiting_;
  if (idle_.empty()) idle_.push_back(std::make_unique<Transfer>(settings_));
  std::unique_ptr<Transfer> transfer = std::move(idle_.back());
  idle_.pop_back();
  leastIdle_ = std::min(leastIdle_, idle_.size());
  if (const CURLcode result = transfer->prepare(std::move(task), now_); result != CURLE_OK) {
    fail(transfer->takeTask(), sessionErrorCode(result), curl_easy_strerror(result));
  } else if (!multi_->add(transfer->handle())) {
    fail(transfer->takeTask(), SessionErrorCode::cannotConnectToHost, "No memory or descriptor is free");
  } else {
    running_.push_back({std::move(transfer), place});
    ++destination.running;
  }
}

void TransferEngine::giveUpOverdue() {
  std::vector<Transfer*> overdue;
  for (const Running& running : running_) {
    if (running.transfer->end() <= now_) overdue.push_back(running.transfer.get());
  }
  for (Transfer* transfer : overdue) finish(*transfer, CURLE_OPERATION_TIMEDOUT);
  if (now_ < nextDeadline_) return;
  nextDeadline_ = Clock::time_point::max();
  for (auto& [key, destination] : destinations_) {
    std::deque<DataTask>& waiting = destination.waiting;
    for (; !waiting.empty() && waiting.front().deadline <= now_; --waiting_) {
      fail(std::move(waiting.front()), SessionErrorCode::timedOut);
      waiting.pop_front();
    }
    if (!waiting.empty()) nextDeadline_ = std::min(nextDeadline_, waiting.front().deadline);
  }
}

void TransferEngine::wait() {
  Clock::time_point next = std::min(now_ + std::chrono::hours(1), nextDeadline_);
  for (const Running& running : running_) next = std::min(next, running.transfer->end());
  multi_->wait(next);
}

void TransferEngine::finish(Transfer& transfer, CURLcode curlResult) {
  const int statusCode = transfer.statusCode();
  const std::string location(curlResult == CURLE_OK ? transfer.redirectLocation() : "");
  DataTaskResult result = transfer.finish(curlResult);
  DataTask task = transfer.takeTask();
  cookies_->keepWithinBounds(transfer.handle());
  const auto place = release(transfer);
  // The connection serves its host as long as that one's turn lasts: another host would need a new one.
  const bool isItsTurn = curlResult == CURLE_OK && now_ < place->second.turnEnd;
  if (isItsTurn && !place->second.waiting.empty()) begin(place);
  queueUp(place);
  if (location.empty()) {
    report(std::move(task), std::move(result));
  } else {
    follow(std::move(task), statusCode, location);
  }
}

/// Keeps the transfer for a later task, as long as so many are needed. Returns where it went.
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
  add(std::move(task));
  redirectedAny_ = true;
}

void TransferEngine::report(DataTask&& task, DataTaskResult result) {
  due_.push_back({std::move(task.handler), std::move(result)});
}

void TransferEngine::fail(DataTask&& task, SessionErrorCode code, std::string_view detail) {
  ErrorPtr error = makeSessionError(code, task.request.url(), detail);
  report(std::move(task), {std::nullopt, std::nullopt, std::move(error)});
}

}  // namespace orvane
