#pragma once

#include <functional>
#include <optional>
#include <string>

#include "orvane/base/Error.h"
#include "orvane/base/Export.h"
#include "orvane/base/Value.h"

namespace orvane {

/// Signs a user in with a mobile phone number, in three calls: requestPictureCode fetches a picture to read,
/// requestCode has a code sent by SMS, requestLogin logs in with it.
///
/// Each call sends one request, returns, and reports through `finished`, which is called exactly once:
/// | outcome | where `finished` runs |
/// | the service accepted or refused the call | the main queue |
/// | no reply came, or none that is JSON | the URL session's background queue |
/// A refusal is an error whose domain is the service's message, without user information. A failed transport
/// is the platform's own error, or one of the domain NetworkTool::errorDomain. A reply without the members
/// that a call reads, or with members of another kind, stops the process, and `finished` is not called; so
/// does an argument that is not UTF-8.
///
/// The calls may be made from any thread. A call that is under way when another changes the client identifier
/// may carry either identifier. `finished` may be empty, must not throw, and is kept until the call is over,
/// the manager is not.
class ORVANE_API OrvaneManager {
 public:
  /// `data`: the picture's bytes, possibly none, or an error.
  using PictureCodeFinished = std::function<void(std::optional<Bytes> data, ErrorPtr error)>;
  /// `error`: why the code was not sent, or null.
  using CodeFinished = std::function<void(ErrorPtr error)>;
  /// `message`: the service's message, for an accepted and for a refused login.
  using LoginFinished = std::function<void(std::optional<std::string> message, ErrorPtr error)>;

  /// The shared manager; made once, on first use, and never destroyed.
  static OrvaneManager& shareManager();

  /// A manager with a client identifier of its own. All managers use one transport.
  OrvaneManager();
  /// A manager is an identity: use the shared one, or make another.
  OrvaneManager(const OrvaneManager&) = delete;
  OrvaneManager& operator=(const OrvaneManager&) = delete;
  /// Cancels nothing: calls under way still report.
  virtual ~OrvaneManager();

  /// The application's client identifier, sent with each call while it is present, also while it is empty.
  /// Absent at first. One with NUL, CR or LF cannot be a header's value and is left out. Plain memory: who
  /// changes it while another thread uses the manager must serialise the two.
  ///@{
  virtual std::optional<std::string> clientId() const;
  virtual void setClientId(std::optional<std::string> clientId);
  ///@}

  /// Sets the client identifier, unchanged, for the calls to come.
  virtual void setAppClientId(std::string clientId);

  /// Fetches the picture verification code for a mobile number. A transport's error is also written to
  /// standard output, as a line with its domain and code.
  virtual void requestPictureCode(std::string mobile, PictureCodeFinished finished);

  /// Has a code sent by SMS to the mobile number; `codeNumber` is what the user read from the picture. A
  /// refusal's code is the service's.
  virtual void requestCode(std::string mobile, std::string codeNumber, CodeFinished finished);

  /// Logs in with the code that came by SMS. When the login is accepted, the system's version, the carrier's
  /// name and the device's model are sent to the service before `finished` is called; nobody waits for that
  /// to arrive, so a process that ends at once may end before it has left. A refusal's code is 1. The process
  /// stops when the request fails: this call reads the reply first.
  virtual void requestLogin(std::string mobile, std::string code, LoginFinished finished);

 private:
  std::optional<std::string> clientId_;
};

}  // namespace orvane
