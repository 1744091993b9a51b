#pragma once

#include <charconv>
#include <cstdlib>
#include <iostream>
#include <string_view>

#include "orvane/host/HostSession.h"
#include "orvane/orvane.h"

/// Returns a session that takes the requests for the service to a development service on this machine, whose port is the
/// program's first argument. Returns null without one, which leaves the library its own. Ends the program if it is not a
/// port.
inline std::shared_ptr<orvane::URLSession> developmentSession(int argc, char** argv) {
  if (argc < 2) return nullptr;
  const std::string_view text = argv[1];
  std::uint16_t port = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
  if (error != std::errc() || end != text.data() + text.size() || port == 0) {
    std::cerr << "The port of a development service wanted, such as 8080, not " << text << "\n";
    std::exit(2);
  }
  return std::make_shared<orvane::HostSession>(orvane::HostSessionConfiguration{
      .reroutes = {{.host = std::string(orvane::serviceHost()), .toHost = "127.0.0.1", .toPort = port}}});
}
