#include "tests/support/AdapterUnderTest.h"

#include "orvane/host/HostSession.h"
#include "orvane/orvane.h"
#include "tests/apple/standins/standins.h"

// The object runtime's own tables would count as leaks. A test counts what the library leaks.
extern "C" int __lsan_is_turned_off();
extern "C" int __lsan_is_turned_off() {
  return 1;
}

namespace orvane {

std::shared_ptr<URLSession> test::makeSession() {
  return makeSession(std::make_shared<HostSession>());
}

std::shared_ptr<URLSession> test::makeSession(std::shared_ptr<URLSession> transport) {
  return standins::makeSession(std::move(transport));
}

/// The default platform, on stand-ins that reach the service.
void test::installAdapter(std::uint16_t servicePort) {
  HostSessionConfiguration configuration;
  configuration.reroutes = {{std::string(serviceHost()), 80, "127.0.0.1", servicePort}};
  standins::setSharedTransport(std::make_shared<HostSession>(configuration));
}

}  // namespace orvane
