#include "tests/support/AdapterUnderTest.h"

#import "orvane/apple/AppleSession.h"
#include "tests/apple/standins/standins.h"

// Turns the leak check off, because it would report the object runtime's tables. SignInCalls.NothingLeaks
// replaces it.
extern "C" int __lsan_is_turned_off();
extern "C" int __lsan_is_turned_off() {
  return 1;
}

std::shared_ptr<orvane::URLSession> orvane::test::makeSession(std::shared_ptr<URLSession> transport) {
  @autoreleasepool {
    return std::make_shared<AppleSession>(standins::sessionOver(std::move(transport)));
  }
}
