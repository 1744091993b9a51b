#pragma once

#include "orvane/base/Export.h"
#include "orvane/platform/DeviceReadings.h"

namespace orvane {

/// Facts that an ordinary machine does not know about itself, but the application may. The library uses each
/// value as it is, without checking it.
struct HostDeviceFacts {
  /// The identifier of the device in the scope of the application's vendor. Default: none.
  std::optional<std::string> identifierForVendor = {};
  /// The name of the mobile carrier. Default: none.
  std::optional<std::string> carrierName = {};
  /// The size of the main screen in points. Default: 0 by 0.
  ScreenBounds screenBounds = {};
  /// The pixels per point of the main screen. Default: 1.
  double screenScale = 1;
};

/// Reads from `uname`: the machine, the kernel's release as the system version, and the system's name as the
/// model word. Returns the application's facts for all other readings.
class ORVANE_API HostDeviceReadings final : public DeviceReadings {
 public:
  /// Keeps `facts` for what `uname` does not report.
  explicit HostDeviceReadings(HostDeviceFacts facts = {}) : facts_(std::move(facts)) {}

  std::string machine() const override;
  std::string systemVersion() const override;
  std::string model() const override;
  std::optional<std::string> identifierForVendor() const override { return facts_.identifierForVendor; }
  std::optional<std::string> carrierName() const override { return facts_.carrierName; }
  ScreenBounds screenBounds() const override { return facts_.screenBounds; }
  double screenScale() const override { return facts_.screenScale; }

 private:
  HostDeviceFacts facts_;
};

}  // namespace orvane
