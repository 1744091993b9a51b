#pragma once

#import <Foundation/Foundation.h>

#include "orvane/platform/URLSession.h"

namespace orvane {

/// Requests over an NSURLSession, with whose configuration they run. Handlers come on its delegate queue, which must be
/// serial and not the main one, as it is unless the application says otherwise. The session stays the
/// application's: it is not invalidated here. A body of more than 64 MiB is reported as NSURLErrorDomain -1103.
///
/// In a file that also imports Orvane.h, `using namespace orvane` makes OrvaneManager and OVDeviceInfoTool ambiguous: they
/// are classes of both languages. Write `orvane::` there.
class ORVANE_API AppleSession final : public URLSession {
 public:
  /// Keeps `session`. Stops the process for nil.
  explicit AppleSession(NSURLSession* _Nonnull session);

  void startDataTask(URLRequest request, DataTaskHandler handler) override;
  void cancelAllOperations() override;

 private:
  NSURLSession* _Nonnull session() const;

  std::shared_ptr<const void> session_;
};

}  // namespace orvane
