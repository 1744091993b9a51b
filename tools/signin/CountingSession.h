#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "orvane/orvane.h"

namespace signin {

/// A session that knows whether requests are on their way. `inner` carries them; `replied` is called for each
/// that is over, on the session's thread, before anybody else learns of it.
class CountingSession final : public orvane::URLSession {
 public:
  CountingSession(std::shared_ptr<orvane::URLSession> inner, std::function<void()> replied);

  void startDataTask(orvane::URLRequest request, orvane::DataTaskHandler handler) override;
  void cancelAllOperations() override { inner_->cancelAllOperations(); }

  /// Waits until no request is on its way, for at most `limit`; whether that came about. May be called from
  /// any thread but the session's own.
  bool waitUntilIdle(std::chrono::milliseconds limit) const;

 private:
  class Count;
  std::shared_ptr<orvane::URLSession> inner_;
  std::function<void()> replied_;
  std::shared_ptr<Count> count_;
};

}  // namespace signin
