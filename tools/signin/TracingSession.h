#pragma once

#include <functional>
#include <memory>
#include <optional>
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

  /// `reroute` is that of the inner session, if it has one.
  TracingSession(std::shared_ptr<orvane::URLSession> inner, std::optional<orvane::Reroute> reroute,
                 std::shared_ptr<const Secrets> secrets, Write write);

  void startDataTask(orvane::URLRequest request, orvane::DataTaskHandler handler) override;
  void cancelAllOperations() override { inner_->cancelAllOperations(); }

 private:
  std::shared_ptr<orvane::URLSession> inner_;
  std::optional<orvane::Reroute> reroute_;
  std::shared_ptr<const Secrets> secrets_;
  Write write_;
};

}  // namespace signin
