#include "adapters/host/TransferEngine.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <utility>

#include "adapters/host/ExitGate.h"
#include "adapters/host/Redirect.h"
#include "adapters/host/SessionError.h"
#include "orvane/platform/URLParts.h"

namespace orvane {
namespace {

/// How many destinations stay known while there are no tasks for them.
constexpr std::size_t keptDestinations = 8;

void initialiseCurl() {
  static const CURLcode result = [] {
    const CURLcode initialised = curl_global_init(CURL_GLOBAL_DEFAULT);
    closeGatesAtExit();
    return initialised;
  }();
  if (result != CURLE_OK) throw std::bad_alloc();
}

CURLSH* makeCookieShare() {
  initialiseCurl();
  CURLSH* share = curl_share_init();
  if (!share) throw std::bad_alloc();
  // One thread alone uses it: no locking functions.
  curl_share_setopt(share, CURLSHOPT_SHARE, CURL_LOCK_DATA_COOKIE);
  return share;
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
  std::transform(key.begin(), key.end(), key.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return key;
}

}  // namespace

TransferEngine::TransferEngine(HostSessionConfiguration configuration)
    : cookies_(makeCookieShare()),
      settings_{std::move(configuration), cookies_.get()},
      multi_(std::make_unique<Multi>()) {
  settings_.reroutes = makeReroutes(settings_.configuration.reroutes);
}

bool TransferEngine::isIdle() const noexcept {
  return running_.empty() && std::all_of(destinations_.begin(), destinations_.end(),
                                         [](const auto& place) { return place.second.waiting.empty(); });
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
  cookies_.reset();
}

void TransferEngine::add(DataTask&& task) {
  const URLParts parts = splitURL(task.request.url());
  if (!isSupportedScheme(parts.scheme)) {
    fail(std::move(task), SessionErrorCode::unsupportedURL);
  } else if (parts.host.empty() || task.request.url().find('\0') != std::string::npos) {
    fail(std::move(task), SessionErrorCode::badURL);
  } else {
    std::deque<DataTask>& waiting = destinations_[destinationKey(parts)].waiting;
    // A task that was redirected is older than those which have come meanwhile.
    const auto place =
        std::upper_bound(waiting.begin(), waiting.end(), task,
                         [](const DataTask& a, const DataTask& b) { return a.deadline < b.deadline; });
    waiting.insert(place, std::move(task));
  }
}

void TransferEngine::admitWaiting() {
  for (auto place = destinations_.begin(); place != destinations_.end(); ++place) {
    Destination& destination = place->second;
    while (!destination.waiting.empty() && destination.running < settings_.configuration.connectionsPerHost) {
      if (idle_.empty()) idle_.push_back(std::make_unique<Transfer>(settings_));
      Transfer& transfer = *idle_.back();
      running_.push_back({std::move(idle_.back()), place});
      idle_.pop_back();
      transfer.prepare(std::move(destination.waiting.front()), now_);
      destination.waiting.pop_front();
      ++destination.running;
      multi_->add(transfer.handle());
    }
  }
}

void TransferEngine::giveUpOverdue() {
  std::vector<Transfer*> overdue;
  for (const Running& running : running_) {
    if (running.transfer->end() <= now_) overdue.push_back(running.transfer.get());
  }
  for (Transfer* transfer : overdue) finish(*transfer, CURLE_OPERATION_TIMEDOUT);
  for (auto place = destinations_.begin(); place != destinations_.end();) {
    std::deque<DataTask>& waiting = place->second.waiting;
    while (!waiting.empty() && waiting.front().deadline <= now_) {
      fail(std::move(waiting.front()), SessionErrorCode::timedOut);
      waiting.pop_front();
    }
    const bool isIdle = waiting.empty() && place->second.running == 0;
    place = isIdle && destinations_.size() > keptDestinations ? destinations_.erase(place) : std::next(place);
  }
}

void TransferEngine::wait() {
  Clock::time_point next = now_ + std::chrono::hours(1);
  for (const Running& running : running_) next = std::min(next, running.transfer->end());
  for (const auto& [key, destination] : destinations_) {
    if (!destination.waiting.empty()) next = std::min(next, destination.waiting.front().deadline);
  }
  multi_->wait(next);
}

void TransferEngine::finish(Transfer& transfer, CURLcode curlResult) {
  const int statusCode = transfer.statusCode();
  const std::string location(curlResult == CURLE_OK ? transfer.redirectLocation() : "");
  DataTaskResult result = transfer.finish(curlResult);
  DataTask task = transfer.takeTask();
  release(transfer);
  if (location.empty()) {
    report(std::move(task), std::move(result));
  } else {
    follow(std::move(task), statusCode, location);
  }
}

/// Keeps the transfer for a later task.
void TransferEngine::release(const Transfer& transfer) {
  const auto place = std::find_if(running_.begin(), running_.end(), [&](const Running& running) {
    return running.transfer.get() == &transfer;
  });
  multi_->remove(transfer.handle());
  --place->destination->second.running;
  idle_.push_back(std::move(place->transfer));
  running_.erase(place);
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

void TransferEngine::fail(DataTask&& task, SessionErrorCode code) {
  ErrorPtr error = makeSessionError(code, task.request.url());
  report(std::move(task), {std::nullopt, std::nullopt, std::move(error)});
}

}  // namespace orvane
