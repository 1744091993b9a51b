#pragma once

#include <string>
#include <string_view>

#include "tools/devservice/HTTPReply.h"
#include "tools/devservice/HTTPRequest.h"
#include "tools/devservice/IdentityService.h"

namespace devservice {

/// Serves the page for a developer's browser, and the requests of the page's script. Not thread-safe.
class Page {
 public:
  /// `service` must outlive the page.
  explicit Page(IdentityService& service);

  /// Returns true if the page answers requests for `path`.
  static bool owns(std::string_view path);

  /// Returns the reply to a request for a path that it owns, from a caller that may see the page.
  HTTPReply answer(const HTTPRequest& request);

 private:
  HTTPReply state(const HTTPRequest& request) const;
  HTTPReply picture(std::string_view mobile) const;
  HTTPReply chooseFault(const HTTPRequest& request);

  IdentityService& service_;
  const std::string run_;  // Differs after a restart, so that the script notices it.
};

}  // namespace devservice
