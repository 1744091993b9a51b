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
  std::string name;   ///< Spelled as in the first addition.
  std::string value;  ///< The values added for the name, joined by commas.

  /// Compares names and values exactly.
  bool operator==(const HeaderField&) const = default;
};

/// One HTTP request, as the library hands it to a URL session. A value type. It cannot hold a method or a
/// header field that would break out of its line on the wire.
class ORVANE_API URLRequest {
 public:
  /// Makes a GET request without body and header fields. Does not check `url`: see TextRules::isURL.
  explicit URLRequest(std::string url);
  /// Copies or moves the whole request.
  ///@{
  URLRequest(const URLRequest& other);
  URLRequest(URLRequest&& other) noexcept;
  URLRequest& operator=(const URLRequest& other);
  URLRequest& operator=(URLRequest&& other) noexcept;
  ///@}
  ~URLRequest();

  /// Returns a part of the request. The body is absent until setBody() is called.
  ///@{
  const std::string& url() const noexcept { return url_; }
  const std::string& method() const noexcept { return method_; }
  const std::optional<Bytes>& body() const noexcept { return body_; }
  const std::vector<HeaderField>& headers() const noexcept { return headers_; }
  ///@}

  /// Replaces the URL, and nothing else.
  void setURL(std::string url) { url_ = std::move(url); }
  /// Sets the method, such as "POST". Ignored unless `method` is an HTTP token.
  void setMethod(std::string_view method);
  /// Sets the body. An empty body counts as a body: it is sent with a length of 0.
  void setBody(Bytes body) { body_ = std::move(body); }

  /// Adds a header field. If the request has a field of that name, ignoring case, appends a comma and `value`
  /// to it. Ignored if `name` is not an HTTP token, if `value` contains NUL, CR or LF, and for the fields
  /// that a session sets itself: Content-Length, Host, Connection and Transfer-Encoding.
  void addValue(std::string_view value, std::string_view name);

  /// Returns the value of the field `name`, ignoring case, or null if there is no such field.
  const std::string* value(std::string_view name) const noexcept;

 private:
  std::string url_;
  std::string method_ = "GET";
  std::optional<Bytes> body_;
  std::vector<HeaderField> headers_;
};

/// Returns true if `a` and `b` differ at most in the case of ASCII letters, as names of header fields,
/// schemes and hosts may.
ORVANE_API bool equalIgnoringCase(std::string_view a, std::string_view b) noexcept;

}  // namespace orvane
