#pragma once

#include <chrono>
#include <memory>

#include "orvane/host/HostSession.h"
#include "orvane/orvane.h"
#include "tools/signin/HarLog.h"
#include "tools/signin/Trace.h"

namespace signin {

/// A host session that hides the line about waiting when a reply comes. It can write each request and its
/// outcome to standard error, and save them.
class ObservedSession final : public orvane::URLSession {
 public:
  /// Writes requests and outcomes if `trace` is not null, and saves them if `har` is not null.
  ObservedSession(const orvane::HostSessionConfiguration& configuration, std::shared_ptr<const Trace> trace,
                  std::shared_ptr<HarLog> har);

  void startDataTask(orvane::URLRequest request, orvane::DataTaskHandler handler) override;
  void cancelAllOperations() override { inner_.cancelAllOperations(); }

  /// See HostSession.
  bool waitUntilIdle(std::chrono::milliseconds limit) { return inner_.waitUntilIdle(limit); }

 private:
  orvane::HostSession inner_;
  const std::shared_ptr<const Trace> trace_;
  const std::shared_ptr<HarLog> har_;
};

}  // namespace signin
