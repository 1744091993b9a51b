#include "adapters/host/Multi.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <limits>
#include <new>
#include <unistd.h>

#include "adapters/host/closeOnExec.h"

namespace orvane {
namespace {

/// What happened to a socket, as curl itself would see it.
int curlEvents(const pollfd& socket) {
  constexpr short broken = POLLERR | POLLHUP | POLLNVAL;
  const auto had = [&](short event) { return (socket.revents & event) != 0; };
  const auto wanted = [&](short event) { return (socket.events & event) != 0; };
  int events = 0;
  if (had(POLLIN) || (wanted(POLLIN) && had(broken))) events |= CURL_CSELECT_IN;
  if (had(POLLOUT)) events |= CURL_CSELECT_OUT;
  if (wanted(POLLOUT) && had(broken)) events |= CURL_CSELECT_ERR;
  return events;
}

}  // namespace

Multi::Multi() : multi_(curl_multi_init()) {
  if (!multi_) throw std::bad_alloc();
  closeWakeUpOnExec(multi_.get());
  if (std::array<int, 2> ends{}; openPipe(ends)) {
    for (const int end : ends) fcntl(end, F_SETFL, O_NONBLOCK);
    wakeReader_ = ends[0];
    wakeWriter_ = ends[1];
  }
  watched_.push_back({wakeReader_, POLLIN, 0});

  constexpr long keptAlive = 64;
  curl_multi_setopt(multi_.get(), CURLMOPT_MAXCONNECTS, keptAlive);
  curl_multi_setopt(multi_.get(), CURLMOPT_SOCKETDATA, this);
  curl_multi_setopt(
      multi_.get(), CURLMOPT_SOCKETFUNCTION, +[](CURL*, curl_socket_t socket, int what, void* self, void*) {
        return static_cast<Multi*>(self)->watch(socket, what);
      });
}

Multi::~Multi() {
  multi_.reset();
  if (wakeReader_ < 0) return;
  close(wakeReader_);
  close(wakeWriter_);
}

/// Called from curl's own frames, which no exception may pass.
int Multi::watch(curl_socket_t socket, int what) try {
  const auto place = std::find_if(watched_.begin() + 1, watched_.end(),
                                  [socket](const pollfd& watched) { return watched.fd == socket; });
  if (what == CURL_POLL_REMOVE) {
    if (place != watched_.end()) watched_.erase(place);
    return 0;
  }
  const bool in = what == CURL_POLL_IN || what == CURL_POLL_INOUT;
  const bool out = what == CURL_POLL_OUT || what == CURL_POLL_INOUT;
  const auto events = static_cast<short>((in ? POLLIN : 0) | (out ? POLLOUT : 0));
  if (place != watched_.end()) {
    place->events = events;
  } else {
    watched_.push_back({socket, events, 0});
  }
  return 0;
} catch (const std::bad_alloc&) {
  return -1;
}

bool Multi::wait(Clock::time_point end) {
  using std::chrono::milliseconds;
  ready_.clear();
  const auto own = std::chrono::ceil<milliseconds>(end - Clock::now()).count();
  long curls = -1;
  curl_multi_timeout(multi_.get(), &curls);
  const auto limit = curls < 0 ? own : std::min<milliseconds::rep>(own, curls);
  // Without a pipe, for want of descriptors, whoever waits has to look now and then.
  const milliseconds::rep longest = wakeReader_ < 0 ? 20 : std::numeric_limits<int>::max();
  if (poll(watched_.data(), static_cast<nfds_t>(watched_.size()),
           static_cast<int>(std::clamp<milliseconds::rep>(limit, 0, longest))) <= 0)
    return false;
  if (watched_[0].revents != 0) {
    std::array<char, 64> wakes;
    static_cast<void>(!read(wakeReader_, wakes.data(), wakes.size()));
  }
  std::copy_if(watched_.begin() + 1, watched_.end(), std::back_inserter(ready_),
               [](const pollfd& watched) { return watched.revents != 0; });
  return !ready_.empty();
}

void Multi::wake() noexcept {
  static_cast<void>(!write(wakeWriter_, "", 1));  // Where the pipe is full, the wait returns anyway.
}

void Multi::act() {
  int running = 0;
  if (ready_.empty()) curl_multi_socket_action(multi_.get(), CURL_SOCKET_TIMEOUT, 0, &running);
  // Whatever else is due is done along with a socket.
  for (const pollfd& socket : ready_)
    curl_multi_socket_action(multi_.get(), socket.fd, curlEvents(socket), &running);
  ready_.clear();
}

std::optional<Multi::Finished> Multi::nextFinished() {
  int left = 0;
  const CURLMsg* message = curl_multi_info_read(multi_.get(), &left);
  if (!message) return std::nullopt;
  return Finished{message->easy_handle, message->data.result};
}

}  // namespace orvane
