import Foundation

/// True if the service answered, and refused.
func isRefusal(_ error: any Error) -> Bool {
  switch (error as NSError).domain {
  case NSURLErrorDomain, NSPOSIXErrorDomain, "kCFErrorDomainCFNetwork", "com.brovent.error": return false
  default: return true
  }
}

/// What to show a person after a failed call.
func words(for error: any Error) -> String {
  let error = error as NSError
  if isRefusal(error) { return error.domain }
  // The reply was not JSON: a captive portal, say, that answers for the service.
  if error.domain == "com.brovent.error" { return "The service cannot be reached through this network." }
  return error.localizedDescription  // The system's sentence, in the language of the device.
}
