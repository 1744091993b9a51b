#include "orvane/client/ErrorKind.h"

#include <iterator>

#include "orvane/network/NetworkTool.h"
#include "orvane/network/networkToolError.h"

namespace orvane {
namespace {

/// Returns the string under a key of the user information, or null if there is none.
const std::string* stringUnder(const Error& error, std::string_view key) {
  const auto found = error.userInfo.find(key);
  return found == error.userInfo.end() ? nullptr : found->second.string();
}

/// Returns the kind of an error of the domain NSURLErrorDomain.
ErrorKind urlErrorKind(std::int64_t code) {
  switch (code) {
    case -1000:  // bad URL
    case -1002:  // unsupported URL
      return ErrorKind::notSent;
    case -1003:  // cannot find the host
    case -1004:  // cannot connect to it
    case -1005:  // connection lost
    case -1006:  // name lookup failed
    case -1009:  // not connected to the internet
    case -1018:  // international roaming is off
    case -1019:  // a telephone call is under way
    case -1020:  // data is not allowed
      return ErrorKind::noConnection;
    case -1001:
      return ErrorKind::timedOut;
    case -1022:  // the application allows secure connections only
      return ErrorKind::notSecure;
    case -1011:  // bad reply
    case -1014:  // empty
    case -1015:  // undecodable raw data
    case -1016:  // undecodable content
    case -1017:  // unparsable reply
    case -1103:  // too large
      return ErrorKind::notReadable;
    default:
      return code <= -1200 && code >= -1206 ? ErrorKind::notSecure : ErrorKind::other;
  }
}

std::string_view sentence(ErrorKind kind) {
  constexpr std::string_view sentences[] = {
      "The service refused the request.",
      "The request could not be sent.",
      "There is no connection to the service.",
      "The service took too long to answer.",
      "A secure connection to the service could not be made.",
      "The service's reply could not be read.",
      "The request failed.",
  };
  static_assert(std::size(sentences) == errorKindNames.size());
  return sentences[hashValue(kind)];
}

/// Returns the kind of an error that is not a refusal.
ErrorKind failureKind(const Error& error) {
  if (error.domain == "NSURLErrorDomain") return urlErrorKind(error.code);
  if (error.domain != NetworkTool::errorDomain) return ErrorKind::other;
  const std::string* reason = stringUnder(error, "error");
  return reason && *reason == requestNotBuilt ? ErrorKind::notSent : ErrorKind::notReadable;
}

}  // namespace

ErrorKind errorKind(const Error& error) {
  if (error.cause) return failureKind(*error.cause);
  return error.userInfo.empty() && !error.platformError ? ErrorKind::refused : failureKind(error);
}

std::string errorMessage(const Error& error) {
  const ErrorKind kind = errorKind(error);
  const bool hasWords = error.cause || kind == ErrorKind::refused;
  const std::string* own = hasWords ? &error.domain : stringUnder(error, "NSLocalizedDescription");
  return own && !own->empty() ? *own : std::string(sentence(kind));
}

}  // namespace orvane
