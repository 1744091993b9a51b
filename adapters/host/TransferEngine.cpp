#include "adapters/host/TransferEngine.h"

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdint>
#include <iterator>
#include <thread>
#include <utility>
#include <variant>

#include "adapters/host/ExitGate.h"
#include "adapters/host/Redirect.h"
#include "orvane/base/ascii.h"
#include "orvane/platform/URLParts.h"

namespace orvane {
namespace {

/// Limits the transfers without a task that are kept for later tasks.
constexpr std::size_t keptTransfers = 6;

/// Limits a request's URL and header fields together, in bytes. libcurl 8.14 leaves out a field of more than
/// 300 KiB without an error.
constexpr std::size_t maximumHeadSize = 256U << 10;

std::size_t headSize(const URLRequest& request) {
  std::size_t size = request.url().size();
  for (const HeaderField& field : request.headers()) size += field.name.size() + field.value.size();
  return size;
}

std::string address(const std::string& host, std::uint16_t port) {
  const bool isBare = host.find(':') != host.npos && !host.starts_with('[');
  return (isBare ? "[" + host + "]:" : host + ":") + std::to_string(port);
}

std::string hostKey(const URLParts& parts) {
  std::string key(parts.scheme);
  key.append("://").append(parts.host).append(":").append(parts.portOrDefault());
  std::transform(key.begin(), key.end(), key.begin(), lowerCase);
  return key;
}

}  // namespace

TransferEngine::TransferEngine(HostSessionConfiguration configuration) : context_{std::move(configuration)} {
  for (const auto& [host, port, toHost, toPort] : context_.configuration.reroutes)
    context_.reroutes.append(address(host, port) + ":" + address(toHost, toPort));
}

std::list<HandlerCall> TransferEngine::advance(std::vector<DataTask>&& arrived) {
  const ExitGate::Pass pass(curlGate());
  context_.now = Clock::now();
  for (; !waiting_.empty() && waiting_.front().deadline <= context_.now; waiting_.pop_front())
    fail(std::move(waiting_.front()), SessionFailure::timedOut);
  for (DataTask& task : arrived) accept(std::move(task));
  int left = 0;
  if (multi_) curl_multi_perform(multi_.get(), &left);
  while (const CURLMsg* message = multi_ ? curl_multi_info_read(multi_.get(), &left) : nullptr) {
    const CURLcode result = message->data.result;
    Transfer* transfer = nullptr;
    curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &transfer);
    settle(*transfer, result);
  }
  for (std::size_t at = 0; at < running_.size();) {
    if (running_[at]->deadline() > context_.now) {
      ++at;
    } else {
      settle(*running_[at], CURLE_OPERATION_TIMEDOUT);  // Removes it.
    }
  }
  return std::exchange(due_, {});
}

void TransferEngine::wait() {
  using std::chrono::milliseconds;
  Clock::time_point next = context_.now + std::chrono::hours(1);
  if (!waiting_.empty()) next = std::min(next, waiting_.front().deadline);
  for (const auto& transfer : running_) next = std::min(next, transfer->deadline());
  const auto timeout = std::max(std::chrono::ceil<milliseconds>(next - Clock::now()), milliseconds(0));
  if (curl_multi_poll(multi_.get(), nullptr, 0, static_cast<int>(timeout.count()), nullptr) != CURLM_OK)
    std::this_thread::sleep_for(milliseconds(20));  // Does not spin where poll() fails.
}

void TransferEngine::accept(DataTask&& task) {
  const URLParts parts = splitURL(task.request.url());
  if (!isSupportedScheme(parts.scheme)) return fail(std::move(task), SessionFailure::unsupportedURL);
  if (parts.host.empty() || task.request.url().find('\0') != std::string::npos)
    return fail(std::move(task), SessionFailure::badURL);
  if (headSize(task.request) > maximumHeadSize) return fail(std::move(task), SessionFailure::requestTooLarge);
  if (task.deadline <= context_.now) return fail(std::move(task), SessionFailure::timedOut);
  task.host = hostKey(parts);
  if (isConnectionFree(task.host)) {
    admit(std::move(task));
  } else {
    // At the end, except for a task that was redirected, which is older than those that have come since.
    const auto before = std::find_if(waiting_.rbegin(), waiting_.rend(),
                                     [&](const DataTask& each) { return each.deadline <= task.deadline; });
    waiting_.insert(before.base(), std::move(task));
  }
}

bool TransferEngine::isConnectionFree(const std::string& host) const {
  const auto used = std::count_if(running_.begin(), running_.end(),
                                  [&](const auto& transfer) { return transfer->host() == host; });
  return running_.size() < context_.configuration.maximumConnections &&
         static_cast<std::size_t>(used) < context_.configuration.connectionsPerHost;
}

/// Gives the task to curl. Returns false if it fails at once.
bool TransferEngine::admit(DataTask&& task) {
  if (idle_.empty()) idle_.push_back(std::make_unique<Transfer>(context_));
  std::unique_ptr<Transfer> transfer = std::move(idle_.back());
  idle_.pop_back();
  if (const CURLcode result = transfer->prepare(std::move(task)); result != CURLE_OK) {
    fail(transfer->takeTask(), sessionFailure(result), curl_easy_strerror(result));
    return false;
  }
  if ((!multi_ && !open()) || curl_multi_add_handle(multi_.get(), transfer->handle()) != CURLM_OK) {
    fail(transfer->takeTask(), SessionFailure::cannotConnectToHost, "No memory or descriptor is free");
    return false;
  }
  running_.push_back(std::move(transfer));
  return true;
}

/// Makes the multi handle. Returns false if there is no memory or descriptor for it.
bool TransferEngine::open() {
  multi_.reset(curl_multi_init());
  // Without descriptors curl makes a handle that cannot be woken.
  if (multi_ && curl_multi_wakeup(multi_.get()) != CURLM_OK) multi_.reset();
  if (!multi_) return false;
  const std::size_t most = std::min<std::size_t>(context_.configuration.maximumConnections, INT_MAX);
  constexpr auto quickExit = static_cast<CURLMoption>(21);  // CURLMOPT_QUICK_EXIT, since curl 8.20.
  for (const CURLMoption option : {CURLMOPT_MAXCONNECTS, CURLMOPT_MAX_TOTAL_CONNECTIONS})
    curl_multi_setopt(multi_.get(), option, static_cast<long>(most));
  curl_multi_setopt(multi_.get(), quickExit, 1L);
  return true;
}

/// Takes the transfer back from curl, and gives its connection to the next task.
void TransferEngine::settle(Transfer& transfer, CURLcode curlResult) {
  const int statusCode = transfer.statusCode();
  const std::string location(curlResult == CURLE_OK ? transfer.redirectLocation() : "");
  DataTaskResult result = transfer.finish(curlResult);
  DataTask task = transfer.takeTask();
  context_.cookies.keepWithinBounds(transfer.handle());
  curl_multi_remove_handle(multi_.get(), transfer.handle());
  const auto running = std::find_if(running_.begin(), running_.end(),
                                    [&](const auto& each) { return each.get() == &transfer; });
  if (idle_.size() < keptTransfers) idle_.push_back(std::move(*running));
  running_.erase(running);
  if (location.empty()) {
    due_.push_back({std::move(task.handler), std::move(result)});
  } else {
    follow(std::move(task), statusCode, location);
  }
  admitNext();
}

/// Admits the first waiting task that may use a connection.
void TransferEngine::admitNext() {
  for (auto task = waiting_.begin(); task != waiting_.end();) {
    if (!isConnectionFree(task->host)) {
      ++task;
    } else {
      const bool isAdmitted = admit(std::move(*task));
      task = waiting_.erase(task);
      if (isAdmitted) return;
    }
  }
}

void TransferEngine::follow(DataTask&& task, int statusCode, const std::string& location) {
  if (++task.redirects > maximumRedirects) return fail(std::move(task), SessionFailure::tooManyRedirects);
  auto next = redirect(task.request, statusCode, location);
  if (const auto* failure = std::get_if<SessionFailure>(&next)) return fail(std::move(task), *failure);
  task.request = std::move(*std::get_if<URLRequest>(&next));
  accept(std::move(task));
}

void TransferEngine::fail(DataTask&& task, SessionFailure failure, std::string_view detail) {
  ErrorPtr error = makeSessionError(failure, task.request.url(), detail);
  due_.push_back({std::move(task.handler), {std::nullopt, std::nullopt, std::move(error)}});
}

}  // namespace orvane
