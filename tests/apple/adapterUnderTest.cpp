#include "tests/support/AdapterUnderTest.h"

#include "orvane/host/HostSession.h"
#include "orvane/orvane.h"
#include "tests/apple/standins/standins.h"

// Turns the leak check off, because it would report the object runtime's tables. BySelector.NothingLeaks
// replaces it.
extern "C" int __lsan_is_turned_off();
extern "C" int __lsan_is_turned_off() {
  return 1;
}

namespace orvane {

std::shared_ptr<URLSession> test::makeSession() {
  return makeSession(std::make_shared<HostSession>());
}

std::shared_ptr<URLSession> test::makeSession(std::shared_ptr<URLSession> inner) {
  return standins::makeSession(std::move(inner));
}

/// Leaves the default platform, and lets the stand-ins reach the service.
void test::installAdapter(std::uint16_t servicePort) {
  HostSessionConfiguration configuration;
  configuration.reroutes = {{std::string(serviceHost()), 80, "127.0.0.1", servicePort}};
  standins::setInnerSession(std::make_shared<HostSession>(configuration));
}

}  // namespace orvane
