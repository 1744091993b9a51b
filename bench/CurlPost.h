#pragma once

#include <cstdint>
#include <curl/curl.h>
#include <memory>
#include <string>
#include <string_view>

namespace orvane::bench {

/// A POST to the service on an easy handle that serves one request after another. Asks of libcurl what a user
/// of the library gets: compressed replies, cookies, and the way to that port on loopback.
class CurlPost {
 public:
  explicit CurlPost(std::uint16_t port);
  CurlPost(const CurlPost&) = delete;
  CurlPost& operator=(const CurlPost&) = delete;

  CURL* handle() const noexcept { return handle_.get(); }

  /// `body` must exist until the transfer ends.
  void prepare(std::string_view path, const std::string& body);

  /// The body of the reply to what was prepared last.
  const std::string& reply() const noexcept { return reply_; }

 private:
  using List = std::unique_ptr<curl_slist, void (*)(curl_slist*)>;

  std::string reply_;
  const List headers_;
  const List reroute_;
  const std::unique_ptr<CURL, void (*)(CURL*)> handle_{curl_easy_init(), curl_easy_cleanup};
};

}  // namespace orvane::bench
