#pragma once

#include "orvane/platform/DeviceReadings.h"

namespace orvane {

/// Reads the facts from the system. AppleDeviceReadings.cpp reads the machine identifier.
/// UIKitDeviceReadings.mm reads the other facts on iOS, and MacDeviceReadings.mm does so on macOS.
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
