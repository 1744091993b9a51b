#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <curl/curl.h>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "adapters/host/CookieJar.h"
#include "adapters/host/Multi.h"
#include "adapters/host/Slist.h"
#include "orvane/host/HostSession.h"

namespace orvane {

/// A request, and whom to tell what became of it.
struct DataTask {
  URLRequest request;
  DataTaskHandler handler;
  Clock::time_point deadline;  ///< When it is over, whatever its state.
  int redirects = 0;
};

/// What all transfers of a session have in common.
struct TransferSettings {
  HostSessionConfiguration configuration;
  CookieJar* cookies = nullptr;
  Slist reroutes = {};
};

/// One HTTP exchange on an easy handle. The handle and its buffers serve one task after another. Used by one
/// thread at a time.
class Transfer {
 public:
  explicit Transfer(const TransferSettings& settings);
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

  CURL* handle() const noexcept { return handle_.get(); }
  DataTask takeTask() noexcept { return std::move(task_); }

  /// Prepares the handle for `task`. `now` is the clock by which activity is dated; it outlives the transfer.
  /// A transfer for which this, or its constructor, cannot set all options up is of no further use: returns
  /// the first failure.
  CURLcode prepare(DataTask&& task, const Clock::time_point& now);

  /// When the transfer has to be given up, unless a byte of a body or a whole header line comes or goes
  /// before.
  Clock::time_point end() const noexcept;

  /// What the exchange came to, when curl has said `result`. Takes the body.
  DataTaskResult finish(CURLcode result);

  /// The absolute URL to which the reply redirects; empty if it does not.
  std::string_view redirectLocation() const;
  int statusCode() const;

 private:
  struct HandleDeleter {
    void operator()(CURL* handle) const noexcept { curl_easy_cleanup(handle); }
  };

  template <class Value>
  void set(CURLoption option, Value value);
  void setMethodAndBody();
  void setHeaders();
  std::size_t take(const char* bytes, std::size_t size) noexcept;
  std::size_t takeHeaderLine(std::string_view line) noexcept;
  bool noteProgress(curl_off_t received, curl_off_t sent) noexcept;

  const TransferSettings& settings_;
  std::unique_ptr<CURL, HandleDeleter> handle_;
  std::array<char, CURL_ERROR_SIZE> errorText_{};
  CURLcode setUp_ = CURLE_OK;
  DataTask task_;
  Slist headers_;
  std::vector<HeaderField> fieldsInHeaders_;  // From which they were made.
  bool bodyInHeaders_ = false;
  Bytes body_;
  const Clock::time_point* now_ = nullptr;
  Clock::time_point lastActivity_;
  curl_off_t progress_ = 0;
  int attempts_ = 0;
  std::size_t headerSize_ = 0;
  std::size_t headerLines_ = 0;
  bool isHeaderWhole_ = false;
  bool isTooLarge_ = false;
};

}  // namespace orvane
