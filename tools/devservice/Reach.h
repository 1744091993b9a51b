#pragma once

#include <string>

namespace devservice {

/// Says which callers a server has.
struct Reach {
  /// The numeric address to listen on. An IPv6 address may be in brackets. 0.0.0.0 means all IPv4 addresses
  /// of the machine, and :: all addresses.
  std::string address = "127.0.0.1";
  /// Opens the page and /inspect to other machines. If it is empty, only this machine sees them.
  std::string token = {};
};

}  // namespace devservice
