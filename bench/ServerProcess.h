#pragma once

#include <cstdint>
#include <string>
#include <sys/types.h>
#include <vector>

namespace orvane::bench {

/// The server in a process of its own, on the last processor. It ends with this object, or with this process.
class ServerProcess {
 public:
  /// `program` is the path of the benchmark that is running: the server's lies beside it and knows the flags.
  explicit ServerProcess(const char* program, const std::vector<std::string>& flags = {});
  ServerProcess(const ServerProcess&) = delete;
  ServerProcess& operator=(const ServerProcess&) = delete;
  ~ServerProcess();

  std::uint16_t port() const noexcept { return port_; }

 private:
  pid_t process_ = -1;
  int lifeline_ = -1;
  std::uint16_t port_ = 0;
};

}  // namespace orvane::bench
