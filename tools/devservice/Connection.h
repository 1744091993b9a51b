#pragma once

#include <chrono>
#include <cstddef>
#include <httplib.h>
#include <string>
#include <string_view>

#include "tools/devservice/Message.h"

namespace devservice {

/// One connection: reads ahead, remembers the head of the request under way, and holds back what is written
/// until the reply is complete, so that a reply leaves in one piece, or spoiled as its fault says.
/// For the thread that serves it, but for abort().
class Connection : public httplib::Stream {
 public:
  /// Takes the descriptor of the socket and closes it in the end. A request that takes longer than the limit
  /// to arrive, from its first byte, or whose head is too large, fails to be read.
  Connection(int descriptor, std::chrono::milliseconds requestLimit)
      : descriptor_(descriptor), requestLimit_(requestLimit) {}
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection() override;

  /// Waits for the next request, at whose head reading then starts; false when none comes in time or the
  /// connection fails.
  bool awaitRequest(std::chrono::milliseconds limit);

  /// The head of the request, as far as it was read, as it was received: from the request line to the empty
  /// line. Valid until the next read.
  std::string_view head() const { return head_; }

  /// The fault of the reply that is being written.
  void setFault(TransportFault fault) { fault_ = fault; }
  TransportFault fault() const { return fault_; }

  /// Takes no request after the reply that is being written.
  void makeLast() { last_ = true; }

  /// Sends what was written, or does what the fault asks for; false when the connection is of no more use.
  bool finishReply();

  /// Makes every read and write, under way or to come, end at once. The only member to be called from another
  /// thread.
  void abort();

  bool is_readable() const override { return true; }
  bool is_writable() const override { return true; }
  socket_t socket() const override { return descriptor_; }
  ssize_t read(char* data, std::size_t size) override;
  ssize_t write(const char* data, std::size_t size) override;
  void get_remote_ip_and_port(std::string& ip, int& port) const override;
  void get_local_ip_and_port(std::string&, int&) const override {}  // nobody asks

 private:
  bool flush();

  bool awaitInput(std::chrono::milliseconds limit) const;

  const int descriptor_;
  const std::chrono::milliseconds requestLimit_;
  std::chrono::steady_clock::time_point deadline_;  // of the request that is being read
  std::string input_;
  std::size_t position_ = 0;  // of the first byte of the input not yet read
  std::string head_;
  bool inHead_ = true;
  std::string output_;
  TransportFault fault_ = TransportFault::none;
  bool last_ = false;
};

}  // namespace devservice
