#include <sys/utsname.h>

#include "adapters/apple/AppleDeviceReadings.h"

namespace orvane {

/// Empty where the system call fails.
std::string AppleDeviceReadings::machine() const {
  utsname names{};
  uname(&names);
  return names.machine;
}

}  // namespace orvane
