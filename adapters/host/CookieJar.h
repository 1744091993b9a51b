#pragma once

#include <cstddef>
#include <curl/curl.h>
#include <memory>

namespace orvane {

/// A session's cookies, in memory. Emptied after a transfer if it holds more than 300 cookies, or more than
/// 256 KiB of them. Not thread-safe.
class CookieJar {
 public:
  /// Throws std::bad_alloc.
  CookieJar();

  /// For CURLOPT_SHARE.
  CURLSH* share() const noexcept { return share_.get(); }

  /// Counts a Set-Cookie line of `size` bytes.
  void note(std::size_t size) noexcept;

  /// Empties the jar if it holds too much. `handle` is one that shares it.
  void keepWithinBounds(CURL* handle) noexcept;

  /// Releases what curl holds.
  void close() noexcept { share_.reset(); }

 private:
  struct Deleter {
    void operator()(CURLSH* share) const noexcept { curl_share_cleanup(share); }
  };

  std::unique_ptr<CURLSH, Deleter> share_;
  // Of the Set-Cookie lines since the last look into the jar.
  std::size_t lines_ = 0;
  std::size_t size_ = 0;
};

}  // namespace orvane
