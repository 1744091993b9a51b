#include "adapters/host/closeOnExec.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#ifdef __linux__
#include <cstdlib>
#include <dirent.h>
#include <linux/sockios.h>
#include <memory>
#include <string>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <vector>
#endif

namespace orvane {

curl_socket_t openSocket(void*, curlsocktype, curl_sockaddr* address) noexcept {
#ifdef SOCK_CLOEXEC
  return socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
#else
  const int file = socket(address->family, address->socktype, address->protocol);
  if (file >= 0) fcntl(file, F_SETFD, FD_CLOEXEC);
  return file;
#endif
}

bool openPipe(std::array<int, 2>& ends) noexcept {
#ifdef __linux__
  return pipe2(ends.data(), O_CLOEXEC) == 0;
#else
  if (pipe(ends.data()) != 0) return false;
  for (const int end : ends) fcntl(end, F_SETFD, FD_CLOEXEC);
  return true;
#endif
}

#ifdef __linux__

namespace {

std::vector<int> inheritableSockets() {
  std::vector<int> sockets;
  const std::string folder = "/proc/self/fd/";
  const std::unique_ptr<DIR, int (*)(DIR*)> list(opendir(folder.c_str()), closedir);
  while (const dirent* entry = list ? readdir(list.get()) : nullptr) {
    const int file = std::atoi(entry->d_name);
    const int flags = fcntl(file, F_GETFD);
    struct stat facts = {};
    if (flags >= 0 && (flags & FD_CLOEXEC) == 0 && stat((folder + entry->d_name).c_str(), &facts) == 0 &&
        S_ISSOCK(facts.st_mode))
      sockets.push_back(file);
  }
  return sockets;
}

/// What has come in and is unread, and what has gone out and is unread.
using Unread = std::array<int, 2>;

std::vector<Unread> unread(const std::vector<int>& sockets) {
  std::vector<Unread> amounts(sockets.size());
  for (std::size_t i = 0; i < sockets.size(); ++i) {
    // Not by ioctl(), in which the thread sanitizer sees a race with whoever opened that socket.
    syscall(SYS_ioctl, sockets[i], SIOCINQ, &amounts[i][0]);
    syscall(SYS_ioctl, sockets[i], SIOCOUTQ, &amounts[i][1]);
  }
  return amounts;
}

}  // namespace

/// curl does not name them, but they show themselves when curl wakes itself up once, then twice.
void closeWakeUpOnExec(CURLM* multi) {
  const std::vector<int> sockets = inheritableSockets();
  const std::vector<Unread> before = unread(sockets);
  curl_multi_wakeup(multi);
  const std::vector<Unread> once = unread(sockets);
  curl_multi_wakeup(multi);
  curl_multi_wakeup(multi);
  const std::vector<Unread> thrice = unread(sockets);
  for (std::size_t i = 0; i < sockets.size(); ++i) {
    for (const std::size_t way : {0U, 1U}) {
      const int first = once[i][way] - before[i][way];
      if (first > 0 && thrice[i][way] - once[i][way] == 2 * first) fcntl(sockets[i], F_SETFD, FD_CLOEXEC);
    }
  }
}

#else

void closeWakeUpOnExec(CURLM*) {}

#endif

}  // namespace orvane
