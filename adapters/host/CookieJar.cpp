#include "adapters/host/CookieJar.h"

#include <cstring>
#include <new>

namespace orvane {
namespace {

/// Limits on the lines that may come before the jar is looked into, and on the cookies that may then be in
/// it. So a server that renews the same few cookies does not lose them, and the jar is rarely looked into.
constexpr std::size_t maximumLines = 150;
constexpr std::size_t maximumSize = 128U << 10;  // In bytes.

}  // namespace

CookieJar::CookieJar() : share_(curl_share_init()) {
  if (!share_) throw std::bad_alloc();
  // One thread alone uses it: no locking functions.
  curl_share_setopt(share_.get(), CURLSHOPT_SHARE, CURL_LOCK_DATA_COOKIE);
}

void CookieJar::note(std::size_t size) noexcept {
  ++lines_;
  size_ += size;
}

void CookieJar::keepWithinBounds(CURL* handle) noexcept {
  if (lines_ <= maximumLines && size_ <= maximumSize) return;
  lines_ = size_ = 0;
  std::size_t lines = 0;
  std::size_t size = 0;
  curl_slist* cookies = nullptr;
  curl_easy_getinfo(handle, CURLINFO_COOKIELIST, &cookies);
  for (const curl_slist* cookie = cookies; cookie; cookie = cookie->next) {
    ++lines;
    size += std::strlen(cookie->data);
  }
  curl_slist_free_all(cookies);
  if (lines > maximumLines || size > maximumSize) curl_easy_setopt(handle, CURLOPT_COOKIELIST, "ALL");
}

}  // namespace orvane
