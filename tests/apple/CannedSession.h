#pragma once

#include <string>
#include <utility>
#include <vector>

#include "orvane/platform/URLSession.h"

namespace orvane::test {

/// Calls each handler at once, with one result after the other, and notes the URLs.
class CannedSession final : public URLSession {
 public:
  explicit CannedSession(std::vector<DataTaskResult> results) : results_(std::move(results)) {}

  void startDataTask(URLRequest request, DataTaskHandler handler) override {
    visited += request.url() + " ";
    handler(results_[next_++ % results_.size()]);
  }
  void cancelAllOperations() override {}

  std::string visited;

 private:
  const std::vector<DataTaskResult> results_;
  std::size_t next_ = 0;
};

}  // namespace orvane::test
