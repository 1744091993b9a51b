#pragma once

#include <memory>

#include "orvane/base/Export.h"
#include "orvane/platform/DeviceReadings.h"
#include "orvane/platform/DispatchQueue.h"
#include "orvane/platform/TextRules.h"
#include "orvane/platform/URLSession.h"

namespace orvane {

/// The services of the system that the library uses.
struct Platform {
  std::shared_ptr<URLSession> sharedSession = {};  ///< Used by each NetworkTool that was not given another.
  std::shared_ptr<DispatchQueue> mainQueue =
      {};  ///< Serial, first in, first out. Belongs to the application.
  std::shared_ptr<DispatchQueue> globalQueue = {};  ///< Concurrent.
  std::shared_ptr<const TextRules> textRules = {};  ///< What is a URL, and what is a letter, mark or number.
  std::shared_ptr<const DeviceReadings> deviceReadings = {};  ///< Facts about the device.
};

/// Replaces parts of the platform: for a test, or for an application with an event loop, a session or device
/// readings of its own. A null member of `platform` stays as the adapter provides it. Call it at most once,
/// and before the first use of the library: later it stops the process.
ORVANE_API void installPlatform(Platform platform);

/// Returns the platform in use, with every member set. From the first call on it is the same until the
/// process ends.
ORVANE_API const Platform& platform();

}  // namespace orvane
