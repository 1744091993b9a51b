#include "orvane/host/HostDeviceReadings.h"

#include <string>
#include <sys/utsname.h>

namespace orvane {
namespace {

/// Returns zeros, and so empty strings, if the system call fails.
utsname systemNames() {
  utsname names{};
  uname(&names);
  return names;
}

}  // namespace

std::string HostDeviceReadings::machine() const {
  return systemNames().machine;
}
std::string HostDeviceReadings::systemVersion() const {
  return systemNames().release;
}
std::string HostDeviceReadings::model() const {
  return systemNames().sysname;
}

}  // namespace orvane
