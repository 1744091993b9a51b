#include "orvane/host/HostSession.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <curl/curl.h>
#include <memory>
#include <new>
#include <utility>

#include "adapters/host/ExitGate.h"
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

/// Once for the process. The gates are armed after curl's libraries have registered their clean-up, and so
/// close before it.
void prepareProcess() {
  static const CURLcode result = [] {
    const CURLcode initialised = curl_global_init(CURL_GLOBAL_DEFAULT);
    closeGatesAtExit();
    return initialised;
  }();
  if (result != CURLE_OK) throw std::bad_alloc();
}

}  // namespace

HostSession::HostSession(HostSessionConfiguration configuration) {
  prepareProcess();
  threads_ = std::make_shared<SessionThreads>(withinBounds(std::move(configuration)));
}

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
