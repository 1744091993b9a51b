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

/// curl's multi interface with a wait of its own. curl says which sockets it waits for and is told what
/// happened to them: so the system is asked once about all of them, where curl_multi_perform asks again for
/// each transfer.
///
/// Not thread-safe, except wake().
class Multi {
 public:
  /// Opens and keeps alive at most `maximumConnections`. Needs nothing of the system before the first add().
  explicit Multi(std::size_t maximumConnections) : maximumConnections_(maximumConnections) {}
  Multi(const Multi&) = delete;
  Multi& operator=(const Multi&) = delete;
  ~Multi();

  /// Returns false if curl cannot take the transfer now, for want of memory or of a descriptor.
  bool add(CURL* handle) noexcept;
  void remove(CURL* handle) noexcept { curl_multi_remove_handle(multi_.get(), handle); }

  /// Returns at `end`, or earlier when there may be something to act on. Returns true if something happened
  /// to a socket.
  bool wait(Clock::time_point end);

  /// Lets the present wait() return, or the next one.
  void wake() noexcept;

  /// Lets curl do what is due since the last wait, and begin what was added.
  void act() noexcept;

  struct Finished {
    CURL* handle;
    CURLcode result;
  };
  /// Returns a transfer that is over and was not returned before.
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
  std::vector<pollfd> watched_ = {{-1, POLLIN, 0}};  // First the end of the pipe through which wake() comes.
  std::vector<pollfd> ready_;
  std::unique_ptr<CURLM, Deleter> multi_;
};

}  // namespace orvane
