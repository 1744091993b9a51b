#pragma once

#include <chrono>
#include <memory>

#include "orvane/host/HostSession.h"
#include "orvane/orvane.h"
#include "tools/signin/Secrets.h"

namespace signin {

/// A host session that knows whether requests are on their way, hides what is waited for once a reply comes, and writes
/// each request and reply to standard error if it is told to.
class ObservedSession final : public orvane::URLSession {
 public:
  /// Traces if `traceSecrets` is set.
  ObservedSession(orvane::HostSessionConfiguration configuration,
                  std::shared_ptr<const Secrets> traceSecrets);

  void startDataTask(orvane::URLRequest request, orvane::DataTaskHandler handler) override;
  void cancelAllOperations() override { inner_.cancelAllOperations(); }

  /// Waits until no request is on its way, for at most `limit`. Returns true if that came about. May be called from any
  /// thread but the session's own.
  bool waitUntilIdle(std::chrono::milliseconds limit) const;

 private:
  class Count;
  const orvane::HostSessionConfiguration configuration_;
  orvane::HostSession inner_;
  const std::shared_ptr<const Secrets> traceSecrets_;
  const std::shared_ptr<Count> count_;
};

}  // namespace signin
