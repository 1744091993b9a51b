#pragma once

#import <Foundation/Foundation.h>
#include <memory>

namespace orvane {

/// Returns true if a redirect from `from` to `to` leaves encryption: from https to http.
bool losesEncryption(NSURL* from, NSURL* to);

/// The URL (an NSURL) of the redirect that a task did not follow, or null. Used on the session's delegate
/// queue alone.
using RefusedURL = std::shared_ptr<const void>;

}  // namespace orvane

/// The delegate of one task. Refuses a redirect from https to http: the task then ends with the reply that
/// redirects. Leaves all other redirects to the session's own delegate, if it decides on them.
@interface OVRedirectGuard : NSObject <NSURLSessionTaskDelegate> {
 @public
  std::shared_ptr<orvane::RefusedURL> refused;
}
@end
