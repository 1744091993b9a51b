#include "tests/support/AdapterUnderTest.h"

std::shared_ptr<orvane::URLSession> orvane::test::makeSession(std::shared_ptr<URLSession> transport) {
  return transport;
}
