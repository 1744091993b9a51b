#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "orvane/base/Export.h"
#include "orvane/base/Value.h"

namespace orvane {

/// One line of a request's header.
struct HeaderField {
  std::string name;   ///< As it was first added.
  std::string value;  ///< All values of that name, joined by commas.

  /// Compares names and values exactly.
  bool operator==(const HeaderField&) const = default;
};

/// One HTTP request: what the logic hands to a URL session. No request object can hold a verb or a header
/// field that would put anything else on the wire than one well-formed line. A value type.
class ORVANE_API URLRequest {
 public:
  /// A GET of `url` without body and header fields. Whether the text is a URL was asked before.
  explicit URLRequest(std::string url);
  /// Copies and moves are of the whole request.
  ///@{
  URLRequest(const URLRequest& other);
  URLRequest(URLRequest&& other) noexcept;
  URLRequest& operator=(const URLRequest& other);
  URLRequest& operator=(URLRequest&& other) noexcept;
  ///@}
  ~URLRequest();

  /// What the request consists of.
  ///@{
  const std::string& url() const noexcept { return url_; }
  const std::string& method() const noexcept { return method_; }
  const std::optional<Bytes>& body() const noexcept { return body_; }
  const std::vector<HeaderField>& headers() const noexcept { return headers_; }
  ///@}

  /// Replaces the URL, and nothing else.
  void setURL(std::string url) { url_ = std::move(url); }
  /// Ignored unless `method` is an HTTP token.
  void setMethod(std::string_view method);
  /// Replaces the body; an empty one is a body, too.
  void setBody(Bytes body) { body_ = std::move(body); }

  /// Adds a header field; a value for a name that is there already (in any case) is appended to the earlier
  /// one behind a comma. Ignored: a name that is no HTTP token, a value with NUL, CR or LF, and the fields
  /// that belong to the transport: Content-Length, Host, Connection, Transfer-Encoding.
  void addValue(std::string_view value, std::string_view name);

  /// The value of the field of that name, in any case; null without one.
  const std::string* value(std::string_view name) const noexcept;

 private:
  std::string url_;
  std::string method_ = "GET";
  std::optional<Bytes> body_;
  std::vector<HeaderField> headers_;
};

/// Whether two names of header fields, schemes or hosts are the same but for the case of ASCII letters.
ORVANE_API bool equalIgnoringCase(std::string_view a, std::string_view b) noexcept;

}  // namespace orvane
