#pragma once

#include "orvane/host/HostSession.h"
#include "orvane/orvane.h"

/// A session that takes the requests for the service to a development service on this machine, whose port is
/// the program's first argument. Without one none, which leaves the library its own.
inline std::shared_ptr<orvane::URLSession> developmentSession(int argc, char** argv) {
  if (argc < 2) return nullptr;
  const auto port = static_cast<std::uint16_t>(std::stoi(argv[1]));
  return std::make_shared<orvane::HostSession>(orvane::HostSessionConfiguration{
      .reroutes = {{.host = std::string(orvane::serviceHost()), .toHost = "127.0.0.1", .toPort = port}}});
}
