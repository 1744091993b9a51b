#include "adapters/host/SessionError.h"

namespace orvane {

SessionErrorCode sessionErrorCode(CURLcode result) noexcept {
  switch (result) {
    case CURLE_URL_MALFORMAT:
      return SessionErrorCode::badURL;
    case CURLE_OPERATION_TIMEDOUT:
      return SessionErrorCode::timedOut;
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
      return SessionErrorCode::cannotFindHost;
    case CURLE_COULDNT_CONNECT:
    case CURLE_PROXY:
      return SessionErrorCode::cannotConnectToHost;
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
    case CURLE_ABORTED_BY_CALLBACK:  // Only ever asked for to keep a lost request from being sent twice.
      return SessionErrorCode::connectionLost;
    case CURLE_BAD_CONTENT_ENCODING:
    case CURLE_WRITE_ERROR:  // Bytes behind a compressed stream. What a transfer refuses has its code.
      return SessionErrorCode::undecodableContent;
    case CURLE_UNSUPPORTED_PROTOCOL:  // HTTP/0.9: other schemes do not get this far.
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM:
      return SessionErrorCode::cannotParseReply;
    case CURLE_FILESIZE_EXCEEDED:
    case CURLE_OUT_OF_MEMORY:  // Also a header line beyond curl's limit of 100 KiB.
      return SessionErrorCode::dataTooLarge;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CIPHER:
    case CURLE_USE_SSL_FAILED:
      return SessionErrorCode::secureConnectionFailed;
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
      return SessionErrorCode::serverCertificateUntrusted;
    case CURLE_SSL_CERTPROBLEM:
      return SessionErrorCode::clientCertificateRequired;
    default:
      return SessionErrorCode::unknown;
  }
}

ErrorPtr makeSessionError(SessionErrorCode code, std::string_view url, std::string_view description) {
  return std::make_shared<const Error>(
      Error{"NSURLErrorDomain",
            static_cast<std::int64_t>(code),
            {{"NSLocalizedDescription", description}, {"NSErrorFailingURLStringKey", url}}});
}

}  // namespace orvane
