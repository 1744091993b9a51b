#pragma once

#include <memory>
#include <string>

#include "orvane/base/Export.h"
#include "orvane/platform/URLSession.h"

namespace orvane {

/// Keeps what the network sends from stopping the process. A session around another one, for an application that must
/// outlive a failed login or a broken reply.
///
/// What a call of OrvaneManager's would stop the process for, this session replaces with a refusal by the service: the
/// failed transfer of a login, a login's reply that is not JSON, and a reply that lacks what the call reads. `finished`
/// then receives, on the main queue, an error whose domain is the application's own message. Its code is -1, for a login
/// 1 as always. All else passes unchanged: what the calls report themselves, the report about the device, and requests
/// for other addresses. So does a request that could not be built; an argument that is not UTF-8 still stops the process.
///
/// Judges each reply by the code of the call itself, so a reply is read twice, the first time on the session queue.
class ORVANE_API GuardedSession final : public URLSession {
 public:
  /// Sends all requests through `session`. Stops the process if `session` is null or `failureMessage` is not UTF-8.
  GuardedSession(std::shared_ptr<URLSession> session, std::string failureMessage);

  void startDataTask(URLRequest request, DataTaskHandler handler) override;
  void cancelAllOperations() override;

 private:
  const std::shared_ptr<URLSession> session_;
  Bytes refusal_;
};

}  // namespace orvane
