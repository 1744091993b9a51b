#include "orvane/device/OVDeviceInfoTool.h"

#include <algorithm>

#include "orvane/base/fatal.h"
#include "orvane/platform/Platform.h"

namespace orvane {
namespace {

const DeviceReadings& readings() {
  return *platform().deviceReadings;
}

}  // namespace

OVDeviceInfoTool::OVDeviceInfoTool() = default;
OVDeviceInfoTool::~OVDeviceInfoTool() = default;

std::string OVDeviceInfoTool::getMEIDCode() {
  std::optional<std::string> identifier = readings().identifierForVendor();
  if (!identifier) fatal("getMEIDCode: the device gives no vendor identifier");
  return *std::move(identifier);
}

std::string OVDeviceInfoTool::getSystemName() {
  return readings().model();
}

DeviceName OVDeviceInfoTool::getDeviceName() {
  const std::string machine = readings().machine();
  const auto isASCII = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  if (!std::all_of(machine.begin(), machine.end(), isASCII))
    fatal("getDeviceName: the machine identifier is not ASCII");
  return deviceNameForMachine(machine.c_str());  // Up to the first NUL byte.
}

std::string OVDeviceInfoTool::getSystemVersion() {
  return "iOS " + readings().systemVersion();
}

std::string OVDeviceInfoTool::getcarrierName() {
  return readings().carrierName().value_or("nil");
}

ScreenSize OVDeviceInfoTool::screenSize() const {
  const ScreenBounds bounds = readings().screenBounds();
  const double longestSide = bounds.width > bounds.height ? bounds.width : bounds.height;
  constexpr double scaleMatters = 667;
  return screenSizeForScreen(longestSide, longestSide == scaleMatters ? readings().screenScale() : 0);
}

}  // namespace orvane
