#pragma once

#include <memory>
#include <string>

#include "orvane/base/Export.h"
#include "orvane/platform/URLSession.h"

namespace orvane {

/// Keeps failed logins and broken replies from stopping the process. A session around another one, for an
/// application that must outlive whatever the network sends.
///
/// Where a call of OrvaneManager would stop the process, this session substitutes a refusal: for a login
/// whose transfer fails or whose reply is not JSON, and for a reply that lacks a member that its call reads.
/// `finished` then receives, on the main queue, an error whose domain is the application's own message. Its
/// code is -1, or 1 for a login, as with every refusal of a login.
///
/// Everything else passes unchanged: errors that the calls report anyway, the report about the device, and
/// requests to other addresses. An argument that is not UTF-8 still stops the process.
///
/// Judges each reply with the same code as the call, so a reply is read twice: first on the session queue.
class ORVANE_API GuardedSession final : public URLSession {
 public:
  /// Sends all requests through `session`. Stops the process if `session` is null or `failureMessage` is not
  /// UTF-8.
  GuardedSession(std::shared_ptr<URLSession> session, std::string failureMessage);

  void startDataTask(URLRequest request, DataTaskHandler handler) override;
  void cancelAllOperations() override;

 private:
  const std::shared_ptr<URLSession> session_;
  Bytes refusal_;
};

}  // namespace orvane
