#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <curl/curl.h>
#include <memory>
#include <optional>
#include <poll.h>
#include <vector>

namespace orvane {

using Clock = std::chrono::steady_clock;

/// curl's multi interface, which waits for its sockets here. curl names the sockets and is told what happened
/// to them. So the system is asked once about all of them, where curl_multi_perform asks again for each
/// transfer.
///
/// Not thread-safe, except wake().
class CurlMulti {
 public:
  /// Opens and keeps alive at most `maximumConnections`. Takes nothing from the system before the first
  /// add().
  explicit CurlMulti(std::size_t maximumConnections) : maximumConnections_(maximumConnections) {}
  CurlMulti(const CurlMulti&) = delete;
  CurlMulti& operator=(const CurlMulti&) = delete;
  ~CurlMulti();

  /// Returns false if curl cannot take the transfer now, for want of memory or of a descriptor.
  bool add(CURL* handle) noexcept;
  void remove(CURL* handle) noexcept { curl_multi_remove_handle(multi_.get(), handle); }

  /// Returns at `end`, or earlier when there may be something to act on. Returns true if something happened
  /// to a socket.
  bool wait(Clock::time_point end);

  /// Makes the present wait() return, or the next one. From any thread.
  void wake() noexcept;

  /// Has curl do what is due since the last wait, and begin what was added.
  void perform() noexcept;

  struct Finished {
    CURL* handle;
    CURLcode result;
  };
  /// Returns a finished transfer that was not returned before.
  std::optional<Finished> nextFinished() noexcept;

 private:
  struct Deleter {
    void operator()(CURLM* multi) const noexcept { curl_multi_cleanup(multi); }
  };

  bool open() noexcept;
  void openWakePipe() noexcept;
  int watch(curl_socket_t socket, int what);

  const std::size_t maximumConnections_;
  int wakeReader_ = -1;
  std::atomic<int> wakeWriter_ = -1;
  std::vector<pollfd> watched_ = {{-1, POLLIN, 0}};  // The first is the wake pipe's.
  std::vector<pollfd> ready_;
  std::unique_ptr<CURLM, Deleter> multi_;
};

}  // namespace orvane
