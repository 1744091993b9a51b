#include "tests/support/AdapterUnderTest.h"

#include "orvane/host/HostDeviceReadings.h"
#include "orvane/host/HostSession.h"
#include "orvane/orvane.h"

namespace orvane {

std::shared_ptr<URLSession> test::makeSession() {
  return std::make_shared<HostSession>();
}

std::shared_ptr<URLSession> test::makeSession(std::shared_ptr<URLSession> transport) {
  return transport;
}

void test::installAdapter(std::uint16_t servicePort) {
  HostSessionConfiguration configuration;
  configuration.reroutes = {{std::string(serviceHost()), 80, "127.0.0.1", servicePort}};
  installPlatform(
      {.sharedSession = std::make_shared<HostSession>(configuration),
       .deviceReadings = std::make_shared<HostDeviceReadings>(HostDeviceFacts{.carrierName = "Carrier"})});
}

}  // namespace orvane
