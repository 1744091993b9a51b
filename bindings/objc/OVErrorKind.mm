#import "adapters/apple/platformString.h"
#import "orvane/apple/platformError.h"
#include "orvane/client/ErrorKind.h"

#import "bindings/objc/include/Orvane/Orvane.h"

static_assert(OVErrorKindRefused == orvane::hashValue(orvane::ErrorKind::refused) &&
              OVErrorKindOther == orvane::hashValue(orvane::ErrorKind::other));

namespace {

/// Makes the C++ error. That of a refusal, which has no user information, has no platform object either.
orvane::Error errorOf(NSError* error) {
  orvane::Error made = *orvane::makeError(error);
  if ([[error userInfo] count] == 0) made.platformError = nullptr;
  return made;
}

}  // namespace

OVErrorKind OVKindOfError(NSError* error) {
  if (!error) return OVErrorKindOther;
  return static_cast<OVErrorKind>(orvane::hashValue(orvane::errorKind(errorOf(error))));
}

NSString* OVMessageOfError(NSError* error) {
  if (!error) return @"";
  return orvane::platformString(orvane::errorMessage(errorOf(error)));
}
