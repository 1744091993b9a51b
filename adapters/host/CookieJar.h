#pragma once

#include <cstddef>
#include <curl/curl.h>
#include <memory>

namespace orvane {

/// A session's cookies, in memory. After a transfer the jar holds at most 300 cookies, and 256 KiB of them:
/// beyond that it is emptied. Not thread-safe.
class CookieJar {
 public:
  /// Throws std::bad_alloc.
  CookieJar();

  /// For CURLOPT_SHARE.
  CURLSH* share() const noexcept { return share_.get(); }

  /// Notes a Set-Cookie line of that many bytes.
  void note(std::size_t size) noexcept;

  /// Empties the jar if too much has come. `handle` is one that shares it.
  void keepWithinBounds(CURL* handle) noexcept;

  /// Releases what curl holds.
  void close() noexcept { share_.reset(); }

 private:
  struct Deleter {
    void operator()(CURLSH* share) const noexcept { curl_share_cleanup(share); }
  };

  std::unique_ptr<CURLSH, Deleter> share_;
  // What came since the jar was looked into.
  std::size_t lines_ = 0;
  std::size_t size_ = 0;
};

}  // namespace orvane
