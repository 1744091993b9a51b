#pragma once

#include <cstddef>
#include <curl/curl.h>
#include <string_view>

#include "orvane/base/Error.h"

namespace orvane {

/// The ways in which a task can fail.
enum class SessionFailure {
  unknown,
  requestTooLarge,
  authoritiesUnreadable,
  badURL,
  timedOut,
  unsupportedURL,
  cannotFindHost,
  cannotConnectToHost,
  connectionLost,
  tooManyRedirects,
  undecodableContent,
  cannotParseReply,
  dataTooLarge,
  secureConnectionFailed,
  serverCertificateHasBadDate,
  serverCertificateUntrusted,
  serverCertificateHasUnknownRoot,
  serverCertificateNotYetValid,
  clientCertificateRequired,
};
inline constexpr auto sessionFailureCount =
    static_cast<std::size_t>(SessionFailure::clientCertificateRequired) + 1;

/// Returns the failure for a result of curl's. `verification` is its CURLINFO_SSL_VERIFYRESULT. Throws
/// std::bad_alloc if curl lacked memory.
SessionFailure sessionFailure(CURLcode result, long verification = 0);

/// Returns an error of the domain "NSURLErrorDomain", with the failure's code, its sentence for people under
/// "NSLocalizedDescription", the URL under "NSErrorFailingURLStringKey" and `detail`, unless it is empty,
/// under "NSDebugDescription".
ErrorPtr makeSessionError(SessionFailure failure, std::string_view url, std::string_view detail = {});

}  // namespace orvane
