#pragma once

#include <string>

#include "orvane/base/Export.h"
#include "orvane/device/DeviceName.h"
#include "orvane/device/ScreenSize.h"

namespace orvane {

/// Facts about the device, read from the platform at the moment of each call. May be used from any thread.
class ORVANE_API OVDeviceInfoTool {
 public:
  OVDeviceInfoTool();
  virtual ~OVDeviceInfoTool();

  /// The device's identifier in the application vendor's scope. Stops the process where there is none.
  static std::string getMEIDCode();

  /// The word for this kind of device; not the system's name, which is intended.
  static std::string getSystemName();

  /// The device's model. Stops the process where the machine identifier is not ASCII.
  static DeviceName getDeviceName();

  /// "iOS " and the system's version.
  static std::string getSystemVersion();

  /// The mobile carrier's name; "nil" where there is none.
  static std::string getcarrierName();

  /// The class of the main screen.
  virtual ScreenSize screenSize() const;
};

}  // namespace orvane
