#pragma once

#include <string>

#include "tests/support/LoopbackServer.h"

namespace orvane::test {

/// Returns a request's head without the field Accept-Encoding, which depends on curl's build, and its body.
inline std::string sentBytes(const LoopbackServer::Request& request) {
  std::string head = request.head;
  const std::size_t encodings = head.find("\r\nAccept-Encoding: ");
  head.erase(encodings, head.find("\r\n", encodings + 1) - encodings);
  return head + "\n" + request.body;
}

}  // namespace orvane::test
