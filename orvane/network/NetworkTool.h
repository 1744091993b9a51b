#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "orvane/base/Error.h"
#include "orvane/base/Export.h"
#include "orvane/base/Snapshot.h"
#include "orvane/base/Value.h"
#include "orvane/network/HTTPMethod.h"
#include "orvane/platform/URLRequest.h"
#include "orvane/platform/URLSession.h"

namespace orvane {

/// Header fields: values by name.
using Headers = std::map<std::string, std::string, std::less<>>;
/// Values by name, for a body or a query string.
using Parameters = Map;

/// Sends a request and hands over the decoded JSON reply, or the error.
///
/// May be used from any thread. A tool keeps a header set and a session; both are replaced whole, so that
/// racing calls may see one or the other and never a mixture. A request in flight keeps its completion and
/// nothing of the tool: destroying a tool cancels nothing.
class ORVANE_API NetworkTool {
 public:
  /// Called at most once, with a result (a map or an array) or an error, never both. It must not throw.
  using Completion = std::function<void(std::optional<Value> result, ErrorPtr error)>;

  /// The domain of the errors that the transport makes itself.
  static constexpr std::string_view errorDomain = "com.brovent.error";

  NetworkTool();
  /// A tool is an identity: share it, or make another.
  NetworkTool(const NetworkTool&) = delete;
  NetworkTool& operator=(const NetworkTool&) = delete;
  virtual ~NetworkTool();

  /// Runs an empty task in a group on the global queue and an empty notification on the main queue.
  virtual void demoGCDGroup();

  /// Replaces the whole header set of the requests to come. An empty set changes nothing.
  virtual void addHeader(Headers headers);

  /// Builds a request with `request`, runs it on `session` and returns. `completion` is called exactly once:
  /// | outcome | with | where |
  /// | no request could be built | error errorDomain (-1), "error": "请求建立失败" | here, before the return |
  /// | the session failed | the session's own error object | the session's background queue |
  /// | the body is not JSON | error errorDomain (-1), "error": "反序列化失败" | the session's background queue |
  /// | the body is a JSON map or array, whatever the HTTP status | the value | the main queue |
  /// or not at all, if its turn on the session's queue was dropped by cancleAllNetwork. Stops the process where
  /// the session is absent.
  virtual void requestJSON(HTTPMethod method, std::string_view url,
                           const std::optional<Parameters>& parameters, Completion completion);

  /// Builds a request and adds the header set. JSON_POST: the parameters as JSON body, none if absent or
  /// empty. POST: their query string as body. GET: "?" and their query string behind the URL. Nothing for an
  /// empty URL, and for a POST with absent parameters. Stops the process on a text that is no URL, on
  /// parameters that cannot be encoded, and on a POST with absent parameters while there is a header set.
  virtual std::optional<URLRequest> request(HTTPMethod method, std::string_view url,
                                            const std::optional<Parameters>& parameters);

  /// "key=value" pairs joined by "&"; nothing for absent parameters. A value keeps its letters, marks and
  /// numbers of every script and has the UTF-8 bytes of all else percent-encoded; a key stays as it is. Stops
  /// the process on a value that is no text, or not UTF-8.
  virtual std::optional<std::string> queryString(const std::optional<Parameters>& parameters);

  /// Drops the session's handler calls that have not started. Transfers go on, and completions already on
  /// their way to the main queue still come. (The name is intended.)
  virtual void cancleAllNetwork();

  /// The session that requests run on: the platform's shared one from the first use on, unless another was
  /// set. May be set absent, and then stays so.
  ///@{
  virtual std::shared_ptr<URLSession> session();
  virtual void setSession(std::shared_ptr<URLSession> session);
  ///@}

 private:
  Snapshot<std::shared_ptr<const Headers>> headers_;
  Snapshot<std::shared_ptr<URLSession>> session_;
};

}  // namespace orvane
