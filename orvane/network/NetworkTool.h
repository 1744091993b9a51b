#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "orvane/base/Error.h"
#include "orvane/base/Export.h"
#include "orvane/base/Value.h"
#include "orvane/network/HTTPMethod.h"
#include "orvane/platform/URLRequest.h"
#include "orvane/platform/URLSession.h"

namespace orvane {

/// Header fields: values by name.
using Headers = std::map<std::string, std::string, std::less<>>;
/// The parameters of a request: values by name, for a body or a query string.
using Parameters = Map;

/// Sends a request and hands over the decoded JSON reply, or an error.
///
/// May be used from any thread. A tool keeps a header set and a session. Each is replaced as a whole: a call
/// that races with a replacement uses the old one or the new one, never a mixture. A request in flight does
/// not refer to its tool, so destroying a tool cancels nothing.
///
/// Promised: the order of the virtual functions, on which subclasses that were compiled earlier depend.
class ORVANE_API NetworkTool {
 public:
  /// Called at most once, with either a result (a map or an array) or an error. Must not throw.
  using Completion = std::function<void(std::optional<Value> result, ErrorPtr error)>;

  /// The domain of the errors that the tool makes itself. Promised: applications compare this string, so it
  /// stays, although the library has another name.
  static constexpr std::string_view errorDomain = "com.brovent.error";

  NetworkTool();
  /// A tool cannot be copied: share it, or make another.
  NetworkTool(const NetworkTool&) = delete;
  NetworkTool& operator=(const NetworkTool&) = delete;
  virtual ~NetworkTool();

  /// Runs an empty function in a group on the global queue and an empty notification on the main queue.
  /// Promised, although it has no effect: applications may call or override it.
  virtual void demoGCDGroup();

  /// Replaces the header set of later requests as a whole. An empty set changes nothing.
  virtual void addHeader(Headers headers);

  /// Builds a request with request(), starts it on session() and returns. Calls `completion` exactly once:
  ///
  /// | outcome | argument | thread |
  /// |---|---|---|
  /// | the request cannot be built | error errorDomain -1, "error": "请求建立失败" | the caller's, at once |
  /// | the transfer fails | the session's own error object | the session queue |
  /// | the body is not JSON | error errorDomain -1, "error": "反序列化失败" | the session queue |
  /// | the body is a JSON map or array, with any HTTP status | the value | the main queue |
  ///
  /// Does not call `completion` if cancleAllNetwork() drops its handler. Stops the process if session() is
  /// null.
  virtual void requestJSON(HTTPMethod method, std::string_view url,
                           const std::optional<Parameters>& parameters, Completion completion);

  /// Builds a request and adds the header set.
  ///
  /// | method | parameters |
  /// |---|---|
  /// | JSON_POST | sent as a JSON body; no body if absent or empty |
  /// | POST | their query string is the body |
  /// | GET | "?" and their query string are appended to the URL |
  ///
  /// Returns nullopt for an empty URL, and for POST without parameters. Stops the process if `url` is not a
  /// URL, if the parameters cannot be encoded, and for POST without parameters once a header set is stored.
  virtual std::optional<URLRequest> request(HTTPMethod method, std::string_view url,
                                            const std::optional<Parameters>& parameters);

  /// Returns the parameters as "key=value" pairs joined by "&", or nullopt if they are absent. A value keeps
  /// letters, marks and numbers of every script; everything else in it is percent-encoded. A key stays as it
  /// is. Stops the process if a value is not a string, or not UTF-8.
  virtual std::optional<std::string> queryString(const std::optional<Parameters>& parameters);

  /// Drops the handlers that wait on the session queue and have not started. Does not stop any transfer, and
  /// completions that are already queued on the main queue are still called.
  ///
  /// Promised: the spelling.
  virtual void cancleAllNetwork();

  /// The session that requests run on. Unless another was set before, the first use chooses the platform's
  /// shared session. May be set to null, and then stays null.
  ///@{
  virtual std::shared_ptr<URLSession> session();
  virtual void setSession(std::shared_ptr<URLSession> session);
  ///@}

 private:
  struct State;
  const std::unique_ptr<State> state_;
};

}  // namespace orvane
