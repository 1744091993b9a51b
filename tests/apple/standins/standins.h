#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "orvane/platform/DeviceReadings.h"
#include "orvane/platform/URLSession.h"

namespace standins {

/// What the stand-ins for UIDevice, UIScreen and CTTelephonyNetworkInfo say. A test may change it.
struct Facts {
  std::string systemVersion = "17.4";
  std::string model = "iPhone";
  std::optional<std::string> identifierForVendor = {};
  bool hasCarrier = true;
  std::optional<std::string> carrierName = "Carrier";
  orvane::ScreenBounds bounds = {375, 667};
  double scale = 2;
};
Facts& facts();

/// What from now on carries the tasks of NSURLSession's shared session.
void setSharedTransport(std::shared_ptr<orvane::URLSession> transport);

/// The adapter's session over an NSURLSession of its own that `transport` carries.
std::shared_ptr<orvane::URLSession> makeSession(std::shared_ptr<orvane::URLSession> transport);

/// The latest NSError that any NSURLSession handed over.
const void* latestError();

}  // namespace standins
