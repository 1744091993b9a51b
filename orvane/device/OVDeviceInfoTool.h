#pragma once

#include <string>

#include "orvane/base/Export.h"
#include "orvane/device/DeviceName.h"
#include "orvane/device/ScreenSize.h"

namespace orvane {

/// Reads facts about the device from the platform, anew with each call. May be used from any thread.
class ORVANE_API OVDeviceInfoTool {
 public:
  OVDeviceInfoTool();
  virtual ~OVDeviceInfoTool();

  /// Returns the identifier that the device has for the application's vendor. Stops the process if it has
  /// none.
  static std::string getMEIDCode();

  /// Returns the model word, such as "iPhone". Despite its name it does not return the system's name.
  static std::string getSystemName();

  /// Returns the device's model. Stops the process if the machine identifier is not ASCII.
  static DeviceName getDeviceName();

  /// Returns "iOS " followed by the system's version, such as "iOS 12.4".
  static std::string getSystemVersion();

  /// Returns the mobile carrier's name, or the string "nil" if there is no carrier.
  static std::string getcarrierName();

  /// Returns the class of the main screen, as screenSizeForScreen() determines it.
  virtual ScreenSize screenSize() const;
};

}  // namespace orvane
