#pragma once

#include <chrono>
#include <memory>

#include "orvane/orvane.h"

namespace signin {

/// A session that knows whether requests are on their way. `inner` carries them.
class CountingSession final : public orvane::URLSession {
 public:
  explicit CountingSession(std::shared_ptr<orvane::URLSession> inner);

  void startDataTask(orvane::URLRequest request, orvane::DataTaskHandler handler) override;
  void cancelAllOperations() override { inner_->cancelAllOperations(); }

  /// Waits until no request is on its way, for at most `limit`. May be called from any thread but the
  /// session's own.
  void waitUntilIdle(std::chrono::milliseconds limit) const;

 private:
  class Count;
  std::shared_ptr<orvane::URLSession> inner_;
  std::shared_ptr<Count> count_;
};

}  // namespace signin
