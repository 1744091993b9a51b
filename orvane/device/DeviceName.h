#pragma once

#include <array>
#include <string_view>

#include "orvane/base/Export.h"
#include "orvane/base/rawValue.h"

namespace orvane {

/// The device models that the library knows.
enum class DeviceName {
  iPhone4,
  iPhone4S,
  iPhone5,
  iPhone5C,
  iPhone5S,
  iPhone6,
  iPhone6Plus,
  iPhone6S,
  iPhone6SPlus,
  iPad1,
  iPad2,
  iPadMini,
  iPad3,
  iPad4,
  iPadAir,
  iPadMini2,
  iPadAir2,
  iPadMini3,
  iPadMini4,
  iPadPro,
  iPodTouch1Gen,
  iPodTouch2Gen,
  iPodTouch3Gen,
  iPodTouch4Gen,
  iPodTouch5Gen,
  iPodTouch6Gen,
  Simulator,
  Unknown,
};

/// The raw values of DeviceName, in the order of its cases.
inline constexpr std::array<std::string_view, 28> deviceNames = {
    "iPhone4",       "iPhone4S",      "iPhone5",       "iPhone5C",      "iPhone5S",      "iPhone6",
    "iPhone6Plus",   "iPhone6S",      "iPhone6SPlus",  "iPad1",         "iPad2",         "iPadMini",
    "iPad3",         "iPad4",         "iPadAir",       "iPadMini2",     "iPadAir2",      "iPadMini3",
    "iPadMini4",     "iPadPro",       "iPodTouch1Gen", "iPodTouch2Gen", "iPodTouch3Gen", "iPodTouch4Gen",
    "iPodTouch5Gen", "iPodTouch6Gen", "Simulator",     "Unknown"};
static_assert(deviceNames.size() == hashValue(DeviceName::Unknown) + 1);

/// Enables rawValue(), hashValue() and fromRawValue() for this enumeration.
template <>
inline constexpr std::span<const std::string_view> rawValues<DeviceName> = deviceNames;

/// Returns the model with the machine identifier `identifier`, such as "iPhone8,1", or Unknown if the library
/// does not list it. Compares exactly. May be called from any thread.
ORVANE_API DeviceName deviceNameForMachine(std::string_view identifier) noexcept;

}  // namespace orvane
