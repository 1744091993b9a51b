#pragma once

#include <cstdint>
#include <curl/curl.h>
#include <memory>
#include <string>
#include <string_view>

#include "adapters/host/CurlSlist.h"

namespace orvane::bench {

/// A POST to the service on an easy handle that serves one request after another. Asks of curl what the
/// library's user gets: compressed replies, cookies kept, and the way to that port on loopback.
class CurlPost {
 public:
  explicit CurlPost(std::uint16_t port);
  CurlPost(const CurlPost&) = delete;
  CurlPost& operator=(const CurlPost&) = delete;

  CURL* handle() const noexcept { return handle_.get(); }

  /// `body` must live until the exchange is over.
  void prepare(std::string_view path, const std::string& body);

  /// The body of the reply to what was prepared last.
  const std::string& reply() const noexcept { return reply_; }

 private:
  struct Deleter {
    void operator()(CURL* handle) const noexcept { curl_easy_cleanup(handle); }
  };

  const std::string base_;
  const std::unique_ptr<CURL, Deleter> handle_;
  CurlSlist headers_;
  CurlSlist reroute_;
  std::string reply_;
};

}  // namespace orvane::bench
