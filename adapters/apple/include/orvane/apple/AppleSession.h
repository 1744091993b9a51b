#pragma once

#import <Foundation/Foundation.h>

#include "orvane/platform/URLSession.h"

namespace orvane {

/// Sends requests through an NSURLSession, with its configuration. Calls handlers on its delegate queue,
/// which must be serial and must not be the main queue. The queue that NSURLSession makes by default is such
/// a one. Does not invalidate the NSURLSession.
///
/// Does not follow a redirect from https to http: the task fails with NSURLErrorUnsupportedURL. Before iOS 15
/// and macOS 12 NSURLSession follows it. If the first URL was https and the reply came over http, the task
/// fails afterwards.
///
/// Each task has a delegate of its own, where the system supports that. It passes all other redirects on to
/// the NSURLSession's delegate, which receives its other messages directly.
///
/// Does not copy a body: it keeps the NSData, whose bytes are read in place, and releases it on any thread.
///
/// In a file that also imports Orvane.h, `using namespace orvane` makes OrvaneManager and OVDeviceInfoTool
/// ambiguous, because both languages have classes of these names. Write `orvane::` there.
class ORVANE_API AppleSession final : public URLSession {
 public:
  /// Retains `session`. Stops the process if it is nil.
  explicit AppleSession(NSURLSession* _Nonnull session);

  void startDataTask(URLRequest request, DataTaskHandler handler) override;
  void cancelAllOperations() override;

 private:
  NSURLSession* _Nonnull session() const;

  std::shared_ptr<const void> session_;
};

}  // namespace orvane
