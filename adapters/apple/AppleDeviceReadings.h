#pragma once

#include "orvane/platform/DeviceReadings.h"

namespace orvane {

/// The device's own words. One source file for each kind of system says how to get them.
class AppleDeviceReadings final : public DeviceReadings {
 public:
  std::string machine() const override;
  std::string systemVersion() const override;
  std::string model() const override;
  std::optional<std::string> identifierForVendor() const override;
  std::optional<std::string> carrierName() const override;
  ScreenBounds screenBounds() const override;
  double screenScale() const override;
};

}  // namespace orvane
