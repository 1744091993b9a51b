#pragma once

#include <functional>
#include <optional>
#include <string>

#include "orvane/base/Error.h"
#include "orvane/base/Export.h"
#include "orvane/base/Value.h"

namespace orvane {

/// Signs a user in with a mobile phone number, in three calls: requestPictureCode fetches a picture to read,
/// requestCode has a code sent by SMS, requestLogin logs in with that code.
///
/// Each call sends one request, returns, and reports its outcome by calling `finished` exactly once:
///
/// | outcome | `finished` receives | it runs on |
/// |---|---|---|
/// | the service accepts the call | no error | the main queue |
/// | the service refuses the call | an error whose domain is the service's message | the main queue |
/// | the transfer fails | the session's own error; a login stops the process | the session queue |
/// | the reply is not JSON | NetworkTool's error; a login stops the process | the session queue |
///
/// Stops the process, without calling `finished`, if the reply lacks a member that the call reads, if that
/// member has another type, or if an argument is not UTF-8.
///
/// **With Platform::failureWords** nothing that the network does stops the process. Where a call would stop,
/// `finished` receives on the main queue an error whose domain is the application's words, whose code is -1,
/// or 1 for a login, and whose `cause` is what happened. docs/errors.md lists what can go wrong, and what to
/// do then.
///
/// The library repeats no call, whatever its outcome.
///
/// A call throws what its session throws when it starts the request; then `finished` is not called. A
/// HostSession throws std::system_error if it has no thread yet and the system has none to give.
///
/// The calls may be made from any thread. If managers with different client identifiers make calls at the
/// same time, each call may carry the identifier of any of them. `finished` may be empty and must not throw.
/// The library keeps it until the call ends. It does not keep the manager, which may be destroyed earlier.
///
/// Promised: the order of the virtual functions, on which subclasses that were compiled earlier depend.
class ORVANE_API OrvaneManager {
 public:
  /// Receives the bytes of the picture, which may be empty, or an error.
  using PictureCodeFinished = std::function<void(std::optional<Bytes> data, ErrorPtr error)>;
  /// Receives the reason why the code was not sent, or null if it was.
  using CodeFinished = std::function<void(ErrorPtr error)>;
  /// Receives the service's message after an accepted login, and the message and an error after a refused
  /// one. After a failure with Platform::failureWords: the words, and an error.
  using LoginFinished = std::function<void(std::optional<std::string> message, ErrorPtr error)>;

  /// Returns the shared manager, which is made on first use and never destroyed.
  static OrvaneManager& shareManager();

  /// Makes a manager with a client identifier of its own. All managers send through the same NetworkTool.
  OrvaneManager();
  /// A manager cannot be copied: use the shared one, or make another.
  OrvaneManager(const OrvaneManager&) = delete;
  OrvaneManager& operator=(const OrvaneManager&) = delete;
  /// Cancels nothing: calls in flight still call their `finished`.
  virtual ~OrvaneManager();

  /// The application's client identifier. Absent at first. Sent as the header XRAPI-CLIENT-ID once set, even
  /// if empty. Left out if it contains NUL, CR or LF. Not synchronised: do not set it while another thread
  /// makes a call on this manager.
  ///@{
  virtual std::optional<std::string> clientId() const;
  virtual void setClientId(std::optional<std::string> clientId);
  ///@}

  /// Sets the client identifier of later calls, by setClientId().
  virtual void setAppClientId(std::string clientId);

  /// Fetches the picture verification code for the mobile number `mobile`. Also writes the error of a failed
  /// transfer, or of a reply that is not JSON, to standard output: one line with its domain and code. The
  /// session limits the size of the reply, and so of the picture: HostSessionConfiguration::maximumBodySize.
  virtual void requestPictureCode(std::string mobile, PictureCodeFinished finished);

  /// Asks the service to send a code by SMS to `mobile`. `codeNumber` is what the user read from the picture.
  /// The error of a refusal has the "code" of the service's reply.
  virtual void requestCode(std::string mobile, std::string codeNumber, CodeFinished finished);

  /// Logs in with `code`, which came by SMS. The error of a refusal always has the code 1.
  ///
  /// Warning: without Platform::failureWords, stops the process if the transfer fails or the reply is not
  /// JSON, because the reply is read before the error.
  ///
  /// After an accepted login the library sends a report to the service: the system's version, the carrier's
  /// name and the device's model. It starts the report before it calls `finished`, and ignores the outcome. A
  /// program that ends after a login first waits for its session: see HostSession::waitUntilIdle.
  virtual void requestLogin(std::string mobile, std::string code, LoginFinished finished);

 private:
  std::optional<std::string> clientId_;
};

}  // namespace orvane
