#include "adapters/apple/AppleDeviceReadings.h"

#include <sys/utsname.h>

namespace orvane {

/// Returns an empty string if the system call fails.
std::string AppleDeviceReadings::machine() const {
  utsname names{};
  uname(&names);
  return names.machine;
}

}  // namespace orvane
