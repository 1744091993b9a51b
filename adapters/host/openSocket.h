#pragma once

#include <array>
#include <curl/curl.h>

namespace orvane {

/// For CURLOPT_OPENSOCKETFUNCTION: a connection that no child process inherits.
curl_socket_t openSocket(void*, curlsocktype, curl_sockaddr* address) noexcept;

/// Two ends of a pipe that no child process inherits. Whether there is one.
bool openPipe(std::array<int, 2>& ends) noexcept;

}  // namespace orvane
