#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <curl/curl.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "adapters/host/CookieJar.h"
#include "adapters/host/CurlSlist.h"
#include "adapters/host/SessionError.h"
#include "orvane/host/HostSession.h"

namespace orvane {

using Clock = std::chrono::steady_clock;

/// A request with its handler.
struct DataTask {
  URLRequest request;
  DataTaskHandler handler;
  Clock::time_point deadline;  ///< When it fails with -1001, also if it has not begun.
  int redirects = 0;           ///< The redirects that led to `request`.
  std::string host = {};       ///< Scheme, host and port of `request`, once they are known to be valid.
};

/// What all transfers of a session share.
struct TransferContext {
  HostSessionConfiguration configuration = {};
  CurlSlist reroutes = {};
  CookieJar cookies = {};
  Clock::time_point now = {};  ///< When curl was last asked what has arrived.
};

/// One HTTP exchange on an easy handle of curl's. The handle and its buffers serve one task after another.
/// Not thread-safe.
class Transfer {
 public:
  /// `context` must outlive the transfer.
  explicit Transfer(TransferContext& context);
  Transfer(const Transfer&) = delete;

  CURL* handle() const noexcept { return handle_.get(); }
  const std::string& host() const noexcept { return task_.host; }
  DataTask takeTask() noexcept { return std::move(task_); }

  /// Prepares the handle for `task`. Returns the first failure to set an option, here or in the constructor;
  /// after one the transfer cannot be used again.
  CURLcode prepare(DataTask&& task);

  /// Returns the time at which the transfer times out if no byte of a body and no whole header line is
  /// transferred before.
  Clock::time_point deadline() const noexcept;

  /// Returns the outcome of the exchange that curl ended with `result`. Moves the body out.
  DataTaskResult finish(CURLcode result);

  /// Returns the absolute URL to which the reply redirects, or an empty string if it does not redirect.
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
  bool mayGoOn() noexcept;
  curl_socket_t openSocket(const curl_sockaddr& address) noexcept;
  std::size_t take(const char* bytes, std::size_t size) noexcept;
  std::size_t takeHeaderLine(std::string_view line) noexcept;
  bool noteProgress(curl_off_t received, curl_off_t sent) noexcept;
  std::size_t refuse(SessionFailure failure) noexcept;
  SessionFailure failure(CURLcode result) const;

  /// What is known of the current exchange.
  struct Exchange {
    Clock::time_point lastActivity;
    curl_off_t bytes = 0;  // Of bodies, in both directions.
    bool wasSent = false;
    std::size_t headerSize = 0;
    std::size_t headerLines = 0;
    bool isHeaderWhole = false;  // The final reply's: not that of an interim one or of a proxy's.
    std::optional<SessionFailure> refusal = {};  // Why a callback ended the exchange.
    Bytes body = {};
  };

  TransferContext& context_;
  std::unique_ptr<CURL, HandleDeleter> handle_;
  std::array<char, CURL_ERROR_SIZE> errorText_{};
  CURLcode setUp_ = CURLE_OK;
  DataTask task_{URLRequest(""), nullptr, {}};
  Exchange exchange_;
  CurlSlist headers_;
};

}  // namespace orvane
