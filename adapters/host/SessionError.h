#pragma once

#include <curl/curl.h>
#include <string_view>

#include "orvane/base/Error.h"

namespace orvane {

/// Codes of the domain "NSURLErrorDomain".
enum class SessionErrorCode {
  unknown = -1,
  badURL = -1000,
  timedOut = -1001,
  unsupportedURL = -1002,
  cannotFindHost = -1003,
  cannotConnectToHost = -1004,
  connectionLost = -1005,
  tooManyRedirects = -1007,
  undecodableContent = -1015,
  cannotParseReply = -1017,
  dataTooLarge = -1103,
  secureConnectionFailed = -1200,
  serverCertificateHasBadDate = -1201,
  serverCertificateUntrusted = -1202,
  serverCertificateHasUnknownRoot = -1203,
  serverCertificateNotYetValid = -1204,
  clientCertificateRequired = -1206,
};

/// Returns the code for a result of curl's. `verification` is its CURLINFO_SSL_VERIFYRESULT.
SessionErrorCode sessionErrorCode(CURLcode result, long verification = 0) noexcept;

/// Returns the error of that code, with its sentence for people under "NSLocalizedDescription", the URL under
/// "NSErrorFailingURLStringKey" and `detail`, unless it is empty, under "NSDebugDescription".
ErrorPtr makeSessionError(SessionErrorCode code, std::string_view url, std::string_view detail = {});

}  // namespace orvane
