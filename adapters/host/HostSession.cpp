#include "orvane/host/HostSession.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <memory>
#include <utility>

#include "adapters/host/SessionThreads.h"

namespace orvane {
namespace {

HostSessionConfiguration withinBounds(HostSessionConfiguration configuration) {
  using std::chrono::milliseconds;
  constexpr milliseconds longest = std::chrono::years(10);
  for (milliseconds* timeout : {&configuration.idleTimeout, &configuration.totalTimeout})
    *timeout = std::clamp(*timeout, milliseconds(1), longest);
  for (std::size_t* count : {&configuration.connectionsPerHost, &configuration.maximumConnections})
    *count = std::max<std::size_t>(*count, 1);
  return configuration;
}

}  // namespace

HostSession::HostSession(HostSessionConfiguration configuration)
    : threads_(std::make_shared<SessionThreads>(withinBounds(std::move(configuration)))) {}

HostSession::~HostSession() {
  threads_->close();
}

void HostSession::startDataTask(URLRequest request, DataTaskHandler handler) {
  if (!handler) handler = [](const auto&) {};
  threads_->start(std::move(request), std::move(handler));
}

void HostSession::cancelAllOperations() {
  threads_->cancelHandlers();
}

}  // namespace orvane
