#include "adapters/host/openSocket.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

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

}  // namespace orvane
