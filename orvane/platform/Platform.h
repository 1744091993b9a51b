#pragma once

#include <functional>
#include <memory>
#include <string>

#include "orvane/base/Error.h"
#include "orvane/base/Export.h"
#include "orvane/platform/DeviceReadings.h"
#include "orvane/platform/DispatchQueue.h"
#include "orvane/platform/TextRules.h"
#include "orvane/platform/URLSession.h"

namespace orvane {

/// The services of the system that the library uses.
struct Platform {
  /// Carries out the requests of each NetworkTool that was not given another session.
  std::shared_ptr<URLSession> sharedSession = {};
  /// Runs the application's callbacks. Serial, first in, first out.
  std::shared_ptr<DispatchQueue> mainQueue = {};
  /// Runs work concurrently, in the background. Promised for NetworkTool::demoGCDGroup(), its one user.
  std::shared_ptr<DispatchQueue> globalQueue = {};
  /// Decides what is a URL, and which characters are letters, marks or numbers.
  std::shared_ptr<const TextRules> textRules = {};
  /// Reads facts about the device.
  std::shared_ptr<const DeviceReadings> deviceReadings = {};
  /// Returns what to tell a person about a failure. Absent by default: then a login whose transfer fails, and
  /// a reply that a call cannot read, stop the process. If present, such a call reports an error instead: its
  /// `cause` is the argument, and its domain is the words. Called on the main queue, once for each
  /// such failure, just before `finished`. Must not throw.
  std::function<std::string(const Error& cause)> failureWords = {};
};

/// Replaces services of the platform, for a test or for an application with its own event loop, session,
/// device readings or words for failures. A service that is null in `platform` stays the adapter's. Call it
/// at most once, before the first use of the library. A later or second call stops the process.
ORVANE_API void installPlatform(Platform platform);

/// Returns the platform in use, with every service set. It never changes after the first call.
ORVANE_API const Platform& platform();

}  // namespace orvane
