#include "adapters/host/SessionError.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>
#include <utility>

namespace orvane {
namespace {

struct Sentence {
  SessionErrorCode code;
  std::string_view text;
};

/// For people, in place of curl's own words.
constexpr Sentence sentences[] = {
    {SessionErrorCode::unknown, "The request failed."},
    {SessionErrorCode::badURL, "The URL is not valid."},
    {SessionErrorCode::timedOut, "The request timed out."},
    {SessionErrorCode::unsupportedURL, "The URL is not supported."},
    {SessionErrorCode::cannotFindHost, "The server could not be found."},
    {SessionErrorCode::cannotConnectToHost, "Could not connect to the server."},
    {SessionErrorCode::connectionLost, "The connection to the server was lost."},
    {SessionErrorCode::tooManyRedirects, "There were too many redirects."},
    {SessionErrorCode::undecodableContent, "The server's reply could not be decoded."},
    {SessionErrorCode::cannotParseReply, "The server's reply could not be understood."},
    {SessionErrorCode::dataTooLarge, "The server's reply is too large."},
    {SessionErrorCode::secureConnectionFailed, "A secure connection to the server could not be made."},
    {SessionErrorCode::serverCertificateHasBadDate, "The server's certificate has expired."},
    {SessionErrorCode::serverCertificateUntrusted, "The server's certificate is not trusted."},
    {SessionErrorCode::serverCertificateHasUnknownRoot,
     "The server's certificate is from an unknown authority."},
    {SessionErrorCode::serverCertificateNotYetValid, "The server's certificate is not valid yet."},
    {SessionErrorCode::clientCertificateRequired, "The server requires a client certificate."},
};

/// Takes OpenSSL's numbers. With another TLS library each refusal says that the certificate is not trusted.
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
    case CURLE_ABORTED_BY_CALLBACK:  // The transfer refused to send a lost request again.
      return SessionErrorCode::connectionLost;
    case CURLE_BAD_CONTENT_ENCODING:
    case CURLE_WRITE_ERROR:  // Bytes after a compressed stream.
      return SessionErrorCode::undecodableContent;
    case CURLE_UNSUPPORTED_PROTOCOL:  // HTTP/0.9. Other schemes do not get this far.
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
  const auto* const sentence = std::find_if(std::begin(sentences), std::end(sentences),
                                            [code](const Sentence& each) { return each.code == code; });
  Map userInfo = {{"NSLocalizedDescription", sentence->text}, {"NSErrorFailingURLStringKey", url}};
  if (!detail.empty()) userInfo.emplace("NSDebugDescription", detail);
  return std::make_shared<const Error>(
      Error{"NSURLErrorDomain", static_cast<std::int64_t>(code), std::move(userInfo)});
}

}  // namespace orvane
