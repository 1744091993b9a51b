// Sends one call to a port on loopback and ends when the reply has come.

#include <cstdlib>

#include "orvane/host/HostSession.h"
#include "orvane/host/hostMainQueue.h"
#include "orvane/orvane.h"

using namespace orvane;

int main(int, char** arguments) {
  HostSessionConfiguration configuration;
  const auto port = static_cast<std::uint16_t>(std::atoi(arguments[1]));
  configuration.reroutes = {{std::string(serviceHost()), 80, "127.0.0.1", port}};
  installPlatform({.sharedSession = std::make_shared<HostSession>(configuration)});
  OrvaneManager::shareManager().requestCode("13800138000", "x7Kp",
                                            [](const ErrorPtr&) { hostMainQueue().stop(); });
  hostMainQueue().run();
}
