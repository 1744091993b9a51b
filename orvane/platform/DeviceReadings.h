#pragma once

#include <optional>
#include <string>

#include "orvane/base/Export.h"

namespace orvane {

/// A size in points.
struct ScreenBounds {
  double width = 0;   ///< From left to right.
  double height = 0;  ///< From top to bottom.
};

/// Reads facts about the device from the system, anew with each call. May be used from any thread.
class ORVANE_API DeviceReadings {
 public:
  DeviceReadings() = default;
  DeviceReadings(const DeviceReadings&) = delete;
  DeviceReadings& operator=(const DeviceReadings&) = delete;
  virtual ~DeviceReadings();

  /// Returns the hardware model as the system's `uname` reports it, such as "iPhone8,1". May end in the NUL
  /// bytes that pad the field. Empty if the system reports none.
  virtual std::string machine() const = 0;
  /// Returns the system's version, such as "15.4".
  virtual std::string systemVersion() const = 0;
  /// Returns the model word, such as "iPhone".
  virtual std::string model() const = 0;
  /// Returns the identifier that the device has for the application's vendor, or nullopt if it has none.
  virtual std::optional<std::string> identifierForVendor() const = 0;
  /// Returns the name of the mobile carrier, or nullopt if there is none.
  virtual std::optional<std::string> carrierName() const = 0;
  /// Returns the size of the main screen, in points.
  virtual ScreenBounds screenBounds() const = 0;
  /// Returns the number of pixels per point of the main screen.
  virtual double screenScale() const = 0;
};

}  // namespace orvane
