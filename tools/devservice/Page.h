#pragma once

#include <string>
#include <string_view>

#include "tools/devservice/HTTPReply.h"
#include "tools/devservice/HTTPRequest.h"
#include "tools/devservice/IdentityService.h"
#include "tools/devservice/RequestLog.h"

namespace devservice {

/// The page for a developer's browser, and what its script asks for. For one thread at a time.
class Page {
 public:
  /// Both have to outlive the page.
  Page(IdentityService& service, const RequestLog& log);

  /// Returns true if requests for `path` are the page's, not the service's.
  static bool owns(std::string_view path);

  /// The reply to a request for a path it owns.
  HTTPReply answer(const HTTPRequest& request);

 private:
  HTTPReply state(const HTTPRequest& request) const;
  HTTPReply picture(std::string_view mobile) const;
  HTTPReply chooseFault(const HTTPRequest& request);

  IdentityService& service_;
  const RequestLog& log_;
  const std::string run_;  // tells a page that the service was started anew
};

}  // namespace devservice
