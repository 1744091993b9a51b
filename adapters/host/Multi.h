#pragma once

#include <chrono>
#include <curl/curl.h>
#include <memory>
#include <optional>
#include <poll.h>
#include <vector>

namespace orvane {

using Clock = std::chrono::steady_clock;

/// curl's multi interface with a wait of its own. curl says which sockets it waits for and is told what happened to
/// them: so the system is asked once about all of them, where curl_multi_perform asks again for each transfer.
///
/// Used by one thread at a time, but for wake().
class Multi {
 public:
  Multi();
  Multi(const Multi&) = delete;
  Multi& operator=(const Multi&) = delete;
  ~Multi();

  void add(CURL* handle) { curl_multi_add_handle(multi_.get(), handle); }
  void remove(CURL* handle) { curl_multi_remove_handle(multi_.get(), handle); }

  /// Returns at `end`, or earlier when there may be something to act on. Whether something happened to a socket.
  bool wait(Clock::time_point end);

  /// Lets the present wait() return, or the next one.
  void wake() noexcept;

  /// Lets curl do what is due since the last wait, and begin what was added.
  void act();

  struct Finished {
    CURL* handle;
    CURLcode result;
  };
  /// A transfer that is over and was not answered before.
  std::optional<Finished> nextFinished();

 private:
  struct Deleter {
    void operator()(CURLM* multi) const noexcept { curl_multi_cleanup(multi); }
  };

  int watch(curl_socket_t socket, int what);

  int wakeReader_ = -1;
  int wakeWriter_ = -1;
  std::vector<pollfd> watched_;  // First of all the end of the pipe through which wake() comes.
  std::vector<pollfd> ready_;
  std::unique_ptr<CURLM, Deleter> multi_;
};

}  // namespace orvane
