#pragma once

#include <cstddef>
#include <cstring>
#include <curl/curl.h>
#include <memory>
#include <new>

namespace orvane {

/// A session's cookies, in memory. Not thread-safe.
class CookieJar {
 public:
  /// Throws std::bad_alloc.
  CookieJar() : share_(curl_share_init()) {
    if (!share_) throw std::bad_alloc();
    // One thread alone uses it: no locking functions.
    curl_share_setopt(share_.get(), CURLSHOPT_SHARE, CURL_LOCK_DATA_COOKIE);
  }

  /// Returns the value for CURLOPT_SHARE.
  CURLSH* share() const noexcept { return share_.get(); }

  /// Empties the jar if it holds more than 300 cookies, or more than 256 KiB of them. `handle` must
  /// share the jar.
  void keepWithinBounds(CURL* handle) noexcept {
    std::size_t count = 0;
    std::size_t size = 0;
    curl_slist* cookies = nullptr;
    curl_easy_getinfo(handle, CURLINFO_COOKIELIST, &cookies);
    for (const curl_slist* cookie = cookies; cookie; cookie = cookie->next) {
      ++count;
      size += std::strlen(cookie->data);
    }
    curl_slist_free_all(cookies);
    if (count > 300 || size > 256U << 10) curl_easy_setopt(handle, CURLOPT_COOKIELIST, "ALL");
  }

 private:
  struct Deleter {
    void operator()(CURLSH* share) const noexcept { curl_share_cleanup(share); }
  };
  std::unique_ptr<CURLSH, Deleter> share_;
};

}  // namespace orvane
