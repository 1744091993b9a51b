#include "tests/support/AdapterUnderTest.h"

#include "orvane/host/HostSession.h"
#include "orvane/orvane.h"
#include "tests/apple/standins/StandIns.h"

namespace orvane {

std::shared_ptr<URLSession> test::makeSession() {
  return standins::makeSession(std::make_shared<HostSession>());
}

/// The default platform, on stand-ins that reach the service.
void test::installAdapter(std::uint16_t servicePort) {
  HostSessionConfiguration configuration;
  configuration.reroutes = {{std::string(serviceHost()), 80, "127.0.0.1", servicePort}};
  standins::setSharedTransport(std::make_shared<HostSession>(configuration));
}

}  // namespace orvane
