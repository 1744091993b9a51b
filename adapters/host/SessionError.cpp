#include "adapters/host/SessionError.h"

#include <cstdint>
#include <memory>
#include <utility>

namespace orvane {
namespace {

/// What a person is told, whatever the details.
constexpr std::string_view sentence(SessionErrorCode code) noexcept {
  switch (code) {
    case SessionErrorCode::unknown:
      return "The request failed.";
    case SessionErrorCode::badURL:
      return "The URL is not valid.";
    case SessionErrorCode::timedOut:
      return "The request timed out.";
    case SessionErrorCode::unsupportedURL:
      return "The URL is not supported.";
    case SessionErrorCode::cannotFindHost:
      return "The server could not be found.";
    case SessionErrorCode::cannotConnectToHost:
      return "Could not connect to the server.";
    case SessionErrorCode::connectionLost:
      return "The connection to the server was lost.";
    case SessionErrorCode::tooManyRedirects:
      return "There were too many redirects.";
    case SessionErrorCode::undecodableContent:
      return "The server's reply could not be decoded.";
    case SessionErrorCode::cannotParseReply:
      return "The server's reply could not be understood.";
    case SessionErrorCode::dataTooLarge:
      return "The server's reply is too large.";
    case SessionErrorCode::secureConnectionFailed:
      return "A secure connection to the server could not be made.";
    case SessionErrorCode::serverCertificateHasBadDate:
      return "The server's certificate has expired.";
    case SessionErrorCode::serverCertificateUntrusted:
      return "The server's certificate is not trusted.";
    case SessionErrorCode::serverCertificateHasUnknownRoot:
      return "The server's certificate is from an unknown authority.";
    case SessionErrorCode::serverCertificateNotYetValid:
      return "The server's certificate is not valid yet.";
    case SessionErrorCode::clientCertificateRequired:
      return "The server requires a client certificate.";
  }
  return {};
}

/// `verification` is by OpenSSL's numbers; with other TLS libraries every refusal is of an untrusted
/// certificate.
SessionErrorCode certificateError(long verification) noexcept {
  switch (verification) {
    case 9:  // X509_V_ERR_CERT_NOT_YET_VALID
      return SessionErrorCode::serverCertificateNotYetValid;
    case 10:  // X509_V_ERR_CERT_HAS_EXPIRED
      return SessionErrorCode::serverCertificateHasBadDate;
    case 19:  // X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN
    case 20:  // X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY
    case 21:  // X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE
      return SessionErrorCode::serverCertificateHasUnknownRoot;
    default:
      return SessionErrorCode::serverCertificateUntrusted;
  }
}

}  // namespace

SessionErrorCode sessionErrorCode(CURLcode result, long verification) noexcept {
  constexpr int tooLarge = 100;  // CURLE_TOO_LARGE, since curl 8.6.
  switch (static_cast<int>(result)) {
    case CURLE_URL_MALFORMAT:
    case CURLE_BAD_FUNCTION_ARGUMENT:  // A URL of more than 8 MB.
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
    case CURLE_ABORTED_BY_CALLBACK:  // Keeps a lost request from being sent twice.
      return SessionErrorCode::connectionLost;
    case CURLE_BAD_CONTENT_ENCODING:
    case CURLE_WRITE_ERROR:  // Bytes after a compressed stream. What a transfer refuses has its code.
      return SessionErrorCode::undecodableContent;
    case CURLE_UNSUPPORTED_PROTOCOL:  // HTTP/0.9: other schemes do not get this far.
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM:
      return SessionErrorCode::cannotParseReply;
    case CURLE_FILESIZE_EXCEEDED:
    case CURLE_OUT_OF_MEMORY:  // Before curl 8.6 also a header line beyond curl's limit of 100 KiB.
    case tooLarge:
      return SessionErrorCode::dataTooLarge;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CIPHER:
    case CURLE_USE_SSL_FAILED:
      return SessionErrorCode::secureConnectionFailed;
    case CURLE_PEER_FAILED_VERIFICATION:
      return certificateError(verification);
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
      return SessionErrorCode::serverCertificateUntrusted;
    case CURLE_SSL_CERTPROBLEM:
      return SessionErrorCode::clientCertificateRequired;
    default:
      return SessionErrorCode::unknown;
  }
}

ErrorPtr makeSessionError(SessionErrorCode code, std::string_view url, std::string_view detail) {
  Map userInfo = {{"NSLocalizedDescription", sentence(code)}, {"NSErrorFailingURLStringKey", url}};
  if (!detail.empty()) userInfo.emplace("NSDebugDescription", detail);
  return std::make_shared<const Error>(
      Error{"NSURLErrorDomain", static_cast<std::int64_t>(code), std::move(userInfo)});
}

}  // namespace orvane
