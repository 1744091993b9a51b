#pragma once

#include <functional>
#include <memory>
#include <string>

#include "orvane/host/HostSession.h"
#include "orvane/orvane.h"
#include "tools/signin/Secrets.h"

namespace signin {

/// A session that tells of each request and of each reply.
class TracingSession final : public orvane::URLSession {
 public:
  /// Takes a line without its end; called from several threads at once, for a request before it is sent, for
  /// a reply before anybody else learns of it.
  using Write = std::function<void(std::string line)>;

  /// `configuration` is that of the inner session.
  TracingSession(std::shared_ptr<orvane::URLSession> inner, orvane::HostSessionConfiguration configuration,
                 std::shared_ptr<const Secrets> secrets, Write write);

  void startDataTask(orvane::URLRequest request, orvane::DataTaskHandler handler) override;
  void cancelAllOperations() override { inner_->cancelAllOperations(); }

 private:
  std::shared_ptr<orvane::URLSession> inner_;
  orvane::HostSessionConfiguration configuration_;
  std::shared_ptr<const Secrets> secrets_;
  Write write_;
};

}  // namespace signin
