#pragma once

#include <memory>

#include "orvane/base/Export.h"
#include "orvane/platform/DeviceReadings.h"
#include "orvane/platform/DispatchQueue.h"
#include "orvane/platform/TextRules.h"
#include "orvane/platform/URLSession.h"

namespace orvane {

/// Who answers the library's questions to the system it runs on.
struct Platform {
  std::shared_ptr<URLSession> sharedSession = {};   ///< What a NetworkTool uses unless it is given another.
  std::shared_ptr<DispatchQueue> mainQueue = {};    ///< Serial, first in, first out; the application's own.
  std::shared_ptr<DispatchQueue> globalQueue = {};  ///< Concurrent.
  std::shared_ptr<const TextRules> textRules = {};  ///< Which texts are URLs, which characters letters.
  std::shared_ptr<const DeviceReadings> deviceReadings = {};  ///< The facts about the device.
};

/// Replaces parts of the platform, for a test or an application with an event loop, a session or readings of
/// its own; what is null in `platform` stays as the adapter provides it. Before the library's first use:
/// later it stops the process.
ORVANE_API void installPlatform(Platform platform);

/// The platform in use, which from now on stays the same until the process ends. Every member is set.
ORVANE_API const Platform& platform();

/// The platform as the adapter provides it. Each adapter defines it; the one linked into the program answers.
Platform makeDefaultPlatform();

}  // namespace orvane
