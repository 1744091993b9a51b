#pragma once

#import <Foundation/Foundation.h>
#include <map>
#include <memory>
#include <string>

#include "orvane/platform/URLSession.h"

/// A text that is not Unicode: a lone surrogate before a pair, and another one after it, before a letter.
@interface BrokenText : NSString
@end

namespace standins {

/// What the stand-ins for UIDevice, UIScreen and CTCarrier report. A test may change it.
struct Facts {
  NSString* systemVersion = @"17.4";
  NSString* model = @"iPhone";
  NSString* identifierForVendor = nil;
  NSString* carrierName = @"Carrier";
  NSSize bounds = {375, 667};
  CGFloat scale = 2;
};
Facts& facts();

/// How tasks of NSURLSession are redirected. A test may change it while no task is under way.
struct Redirects {
  std::map<std::string, std::string> locations = {};  // By URL. The reply of such a URL has status 307.
  bool tasksHaveDelegates = true;                     // False on systems before iOS 15.
};
Redirects& redirects();

/// Sets the session that carries out the tasks of NSURLSession's shared session from now on.
void setInnerSession(std::shared_ptr<orvane::URLSession> inner);

/// Makes a session whose tasks `inner` carries out.
NSURLSession* sessionOver(std::shared_ptr<orvane::URLSession> inner);

}  // namespace standins
