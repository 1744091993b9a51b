#include "tools/signin/TracingSession.h"

#include <utility>

#include "tools/signin/Trace.h"

namespace signin {

TracingSession::TracingSession(std::shared_ptr<orvane::URLSession> inner,
                               orvane::HostSessionConfiguration configuration,
                               std::shared_ptr<const Secrets> secrets, Write write)
    : inner_(std::move(inner)),
      configuration_(std::move(configuration)),
      secrets_(std::move(secrets)),
      write_(std::move(write)) {}

void TracingSession::startDataTask(orvane::URLRequest request, orvane::DataTaskHandler handler) {
  write_(requestLine(request, configuration_, *secrets_));
  auto traced = [url = request.url(), secrets = secrets_, write = write_,
                 handler = std::move(handler)](orvane::DataTaskResult result) {
    write(replyLine(url, result, *secrets));
    handler(std::move(result));
  };
  inner_->startDataTask(std::move(request), std::move(traced));
}

}  // namespace signin
