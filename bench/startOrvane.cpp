// Makes one call to a port on loopback, and waits until it is ended.

#include <cstdlib>
#include <memory>

#include "orvane/host/HostSession.h"
#include "orvane/host/hostMainQueue.h"
#include "orvane/orvane.h"

int main(int, char** arguments) {
  using namespace orvane;
  HostSessionConfiguration configuration;
  const auto port = static_cast<std::uint16_t>(std::atoi(arguments[1]));
  configuration.reroutes = {{std::string(serviceHost()), 80, "127.0.0.1", port}};
  installPlatform({.sharedSession = std::make_shared<HostSession>(configuration)});
  OrvaneManager::shareManager().requestCode("13800138000", "x7Kp", nullptr);
  hostMainQueue().run();
}
