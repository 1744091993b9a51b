#pragma once

#include "orvane/base/Export.h"
#include "orvane/platform/DeviceReadings.h"

namespace orvane {

/// What an ordinary machine does not know about itself, and the application may.
struct HostDeviceFacts {
  std::optional<std::string> identifierForVendor = {};  ///< Of the device, in the application vendor's scope.
  std::optional<std::string> carrierName = {};          ///< Of the mobile carrier.
  ScreenBounds screenBounds = {};                       ///< Of the main screen.
  double screenScale = 1;                               ///< Pixels a point.
};

/// The readings that `uname` gives: the machine, the kernel's release as system version, the system's name as
/// model word. All else is as the application says.
class ORVANE_API HostDeviceReadings final : public DeviceReadings {
 public:
  /// Readings that answer with `facts` what `uname` does not tell.
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
