#pragma once

#include <optional>
#include <string>

#include "orvane/base/Export.h"

namespace orvane {

/// A size in points.
struct ScreenBounds {
  double width = 0;   ///< Across.
  double height = 0;  ///< Down.
};

/// The facts about the device, each read from the system at the moment of the call. May be used from any
/// thread.
class ORVANE_API DeviceReadings {
 public:
  DeviceReadings() = default;
  DeviceReadings(const DeviceReadings&) = delete;
  DeviceReadings& operator=(const DeviceReadings&) = delete;
  virtual ~DeviceReadings();

  /// The hardware model as the system's `uname` gives it, with or without the NUL bytes that pad its field;
  /// empty where the system gives none.
  virtual std::string machine() const = 0;
  /// The system's version, such as "15.4".
  virtual std::string systemVersion() const = 0;
  /// The word for this kind of device.
  virtual std::string model() const = 0;
  /// The device's identifier in the application vendor's own scope.
  virtual std::optional<std::string> identifierForVendor() const = 0;
  /// The name of the mobile carrier.
  virtual std::optional<std::string> carrierName() const = 0;
  /// The size of the main screen.
  virtual ScreenBounds screenBounds() const = 0;
  /// Pixels a point.
  virtual double screenScale() const = 0;
};

}  // namespace orvane
