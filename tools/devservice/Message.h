#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace devservice {

/// Texts by name.
using Members = std::map<std::string, std::string, std::less<>>;

/// Returns true if the texts differ at most in the case of ASCII letters.
bool equalIgnoringCase(std::string_view a, std::string_view b);

/// A request as the service sees it, whatever carried it.
struct Request {
  std::string method;
  std::string path;  ///< Without percent signs that stand for something else.
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;
  std::string peer;        ///< Numeric address of the other end.
  std::string query = {};  ///< What follows the question mark, as it came.
  bool isProxied = false;  ///< It was sent as to a proxy, and "Host" is what its URL names.

  /// The value of the first header of that name, whose case does not matter; it lives as long as the request.
  std::optional<std::string_view> header(std::string_view name) const;
};

/// What is done to the connection instead of, or before, sending the reply.
enum class TransportFault {
  none,
  delay,    ///< The whole reply is sent, but late.
  drop,     ///< The connection is closed without a byte.
  cut,      ///< The head and half of the body are sent, then the connection is closed.
  reset,    ///< The connection is reset without a byte.
  silence,  ///< Nothing is sent, and the connection stays until the peer ends it.
};

struct Reply {
  int status = 200;
  std::string contentType = "application/json";
  std::string body;
  TransportFault fault = TransportFault::none;
  std::vector<std::pair<std::string, std::string>> headers = {};  ///< Beyond those that every reply has.
  std::chrono::milliseconds delay{0};                             ///< Of TransportFault::delay.
  /// A request that is answered while this time passes may change the reply, and is worth asking again after.
  std::chrono::milliseconds wait{0};
};

}  // namespace devservice
