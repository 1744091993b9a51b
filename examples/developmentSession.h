#pragma once

#include <charconv>
#include <cstdlib>
#include <iostream>
#include <string_view>

#include "orvane/host/HostSession.h"
#include "orvane/orvane.h"

/// Returns a session whose requests reach a development service on this machine, at the port in the program's
/// first argument. Without an argument they reach the service's own address. Ends the program if the argument
/// is not a port.
inline std::shared_ptr<orvane::HostSession> developmentSession(int argc, char** argv) {
  if (argc < 2) return std::make_shared<orvane::HostSession>();
  const std::string_view text = argv[1];
  std::uint16_t port = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
  if (error != std::errc() || end != text.data() + text.size() || port == 0) {
    std::cerr << "Expected the port of a development service, such as 8080, but got " << text << "\n";
    std::exit(2);
  }
  return std::make_shared<orvane::HostSession>(orvane::HostSessionConfiguration{
      .reroutes = {{.host = std::string(orvane::serviceHost()), .toHost = "127.0.0.1", .toPort = port}}});
}
