#include "adapters/host/SessionError.h"

#include <iterator>
#include <memory>
#include <new>
#include <utility>

namespace orvane {
namespace {

struct Description {
  int code;
  std::string_view sentence;  // For people, in place of curl's own words.
};

/// In the order of SessionFailure.
constexpr Description descriptions[] = {
    {-1, "The request failed."},
    {-1, "The request is too large."},
    {-1, "The trusted certificate authorities could not be read."},
    {-1000, "The URL is not valid."},
    {-1001, "The request timed out."},
    {-1002, "The URL is not supported."},
    {-1003, "The server could not be found."},
    {-1004, "Could not connect to the server."},
    {-1005, "The connection to the server was lost."},
    {-1007, "There were too many redirects."},
    {-1015, "The server's reply could not be decoded."},
    {-1017, "The server's reply could not be understood."},
    {-1103, "The server's reply is too large."},
    {-1200, "A secure connection to the server could not be made."},
    {-1201, "The server's certificate has expired."},
    {-1202, "The server's certificate is not trusted."},
    {-1203, "The server's certificate is from an unknown authority."},
    {-1204, "The server's certificate is not valid yet."},
    {-1206, "The server requires a client certificate."},
};
static_assert(std::size(descriptions) == sessionFailureCount);

/// Takes a number of OpenSSL's. With another TLS library every failure is that the certificate is not
/// trusted.
SessionFailure certificateFailure(long verification) noexcept {
  switch (verification) {
    case 9:  // X509_V_ERR_CERT_NOT_YET_VALID
      return SessionFailure::serverCertificateNotYetValid;
    case 10:  // X509_V_ERR_CERT_HAS_EXPIRED
      return SessionFailure::serverCertificateHasBadDate;
    case 19:  // X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN
    case 20:  // X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY
    case 21:  // X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE
      return SessionFailure::serverCertificateHasUnknownRoot;
    default:
      return SessionFailure::serverCertificateUntrusted;
  }
}

}  // namespace

SessionFailure sessionFailure(CURLcode result, long verification) {
  switch (result) {
    case CURLE_OUT_OF_MEMORY:
      throw std::bad_alloc();
    case CURLE_URL_MALFORMAT:
      return SessionFailure::badURL;
    case CURLE_OPERATION_TIMEDOUT:
      return SessionFailure::timedOut;
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
      return SessionFailure::cannotFindHost;
    case CURLE_COULDNT_CONNECT:
    case CURLE_PROXY:
      return SessionFailure::cannotConnectToHost;
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
      return SessionFailure::connectionLost;
    case CURLE_BAD_CONTENT_ENCODING:
    case CURLE_WRITE_ERROR:  // Bytes after a compressed stream.
      return SessionFailure::undecodableContent;
    case CURLE_UNSUPPORTED_PROTOCOL:  // HTTP/0.9. Other schemes do not get this far.
    case CURLE_WEIRD_SERVER_REPLY:
      return SessionFailure::cannotParseReply;
    case CURLE_FILESIZE_EXCEEDED:
      return SessionFailure::dataTooLarge;
    case CURLE_SSL_CONNECT_ERROR:
      return SessionFailure::secureConnectionFailed;
    case CURLE_PEER_FAILED_VERIFICATION:
      return certificateFailure(verification);
    case CURLE_SSL_CACERT_BADFILE:
      return SessionFailure::authoritiesUnreadable;
    case CURLE_SSL_CLIENTCERT:
      return SessionFailure::clientCertificateRequired;
    default:
      return SessionFailure::unknown;
  }
}

ErrorPtr makeSessionError(SessionFailure failure, std::string_view url, std::string_view detail) {
  const auto& [code, sentence] = descriptions[static_cast<std::size_t>(failure)];
  Map userInfo = {{"NSLocalizedDescription", sentence}, {"NSErrorFailingURLStringKey", url}};
  if (!detail.empty()) userInfo.emplace("NSDebugDescription", detail);
  return std::make_shared<const Error>(Error{"NSURLErrorDomain", code, std::move(userInfo)});
}

}  // namespace orvane
