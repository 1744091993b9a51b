#include "adapters/host/CurlMulti.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <iterator>
#include <new>
#include <thread>
#include <unistd.h>

namespace orvane {
namespace {

/// Returns what happened to a socket. Nothing if it is only broken: then curl looks for itself.
int curlEvents(short events) {
  return ((events & POLLIN) != 0 ? CURL_CSELECT_IN : 0) | ((events & POLLOUT) != 0 ? CURL_CSELECT_OUT : 0);
}

}  // namespace

CurlMulti::~CurlMulti() {
  multi_.reset();
  if (wakeReader_ < 0) return;
  close(wakeReader_);
  close(wakeWriter_);
}

bool CurlMulti::add(CURL* handle) noexcept {
  return (multi_ || open()) && curl_multi_add_handle(multi_.get(), handle) == CURLM_OK;
}

bool CurlMulti::open() noexcept {
  multi_.reset(curl_multi_init());
  if (!multi_) return false;
  const auto set = [this](auto option, auto value) { return curl_multi_setopt(multi_.get(), option, value); };
  const auto connections = static_cast<long>(std::min<std::size_t>(maximumConnections_, INT_MAX));
  set(CURLMOPT_MAXCONNECTS, connections);
  set(CURLMOPT_MAX_TOTAL_CONNECTIONS, connections);
  constexpr auto quickExit = static_cast<CURLMoption>(21);  // CURLMOPT_QUICK_EXIT, since curl 8.20.
  set(quickExit, 1L);
  const auto watch = +[](CURL*, curl_socket_t socket, int what, void* self, void*) {
    return static_cast<CurlMulti*>(self)->watch(socket, what);
  };
  const bool isWatching =
      set(CURLMOPT_SOCKETDATA, this) == CURLM_OK && set(CURLMOPT_SOCKETFUNCTION, watch) == CURLM_OK;
  if (!isWatching) multi_.reset();
  return isWatching;
}

void CurlMulti::openWakePipe() noexcept {
  std::array<int, 2> ends{};
#ifdef __linux__
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return;
#else
  if (pipe(ends.data()) != 0) return;
  for (const int end : ends) fcntl(end, F_SETFD, FD_CLOEXEC);
#endif
  for (const int end : ends) fcntl(end, F_SETFL, O_NONBLOCK);
  wakeReader_ = watched_[0].fd = ends[0];
  wakeWriter_ = ends[1];
}

/// Throws nothing, since curl calls it.
int CurlMulti::watch(curl_socket_t socket, int what) try {
  std::erase_if(watched_, [socket](const pollfd& watched) { return watched.fd == socket; });
  const int events = (what != CURL_POLL_OUT ? POLLIN : 0) | (what != CURL_POLL_IN ? POLLOUT : 0);
  if (what != CURL_POLL_REMOVE) watched_.push_back({socket, static_cast<short>(events), 0});
  return 0;
} catch (const std::bad_alloc&) {
  return -1;
}

bool CurlMulti::wait(Clock::time_point end) {
  using std::chrono::milliseconds;
  ready_.clear();
  const auto own = std::chrono::ceil<milliseconds>(end - Clock::now()).count();
  long curls = -1;
  curl_multi_timeout(multi_.get(), &curls);
  const auto limit = curls < 0 ? own : std::min<milliseconds::rep>(own, curls);
  // Nothing can wake this thread if there is no descriptor for the pipe, or poll() fails. Then it looks now
  // and then.
  constexpr milliseconds::rep aWhile = 20;
  const milliseconds::rep longest = wakeReader_ < 0 ? aWhile : INT_MAX;
  const auto timeout = std::clamp<milliseconds::rep>(limit, 0, longest);
  const int changed = poll(watched_.data(), static_cast<nfds_t>(watched_.size()), static_cast<int>(timeout));
  if (changed < 0 && errno == EINTR) return false;
  if (changed < 0) {
    std::this_thread::sleep_for(milliseconds(std::min(timeout, aWhile)));
    for (pollfd& watched : watched_) watched.revents = watched.events;
  }
  if (watched_[0].revents != 0) {
    std::array<char, 64> wakes;
    static_cast<void>(!read(wakeReader_, wakes.data(), wakes.size()));
  }
  std::copy_if(watched_.begin() + 1, watched_.end(), std::back_inserter(ready_),
               [](const pollfd& watched) { return watched.revents != 0; });
  return !ready_.empty();
}

void CurlMulti::wake() noexcept {
  static_cast<void>(!write(wakeWriter_, "", 1));  // Where the pipe is full, the wait returns anyway.
}

void CurlMulti::perform() noexcept {
  if (!multi_) return;
  if (wakeReader_ < 0) openWakePipe();
  int running = 0;
  if (ready_.empty()) curl_multi_socket_action(multi_.get(), CURL_SOCKET_TIMEOUT, 0, &running);
  // With a socket curl also does all else that is due.
  for (const pollfd& socket : ready_)
    curl_multi_socket_action(multi_.get(), socket.fd, curlEvents(socket.revents), &running);
  ready_.clear();
}

std::optional<CurlMulti::Finished> CurlMulti::nextFinished() noexcept {
  int left = 0;
  const CURLMsg* message = multi_ ? curl_multi_info_read(multi_.get(), &left) : nullptr;
  if (!message) return std::nullopt;
  return Finished{message->easy_handle, message->data.result};
}

}  // namespace orvane
