#include "adapters/host/Transfer.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <fcntl.h>
#include <limits>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <new>
#include <string>
#include <sys/socket.h>
#include <utility>

#include "adapters/host/Redirect.h"
#include "adapters/host/SessionError.h"
#include "orvane/base/appendPercentEncoded.h"
#include "orvane/base/fatal.h"

namespace orvane {
namespace {

/// Limits on all header lines of an exchange: interim replies, the reply, trailers. Below the limits that
/// some versions of curl have.
constexpr std::size_t maximumHeaderSize = 256U << 10;  // In bytes.
constexpr std::size_t maximumHeaderLines = 4000;

/// Returns the URL with its spaces, which a redirect may have, and bytes beyond ASCII percent-encoded. curl
/// decodes those of the host again.
std::string percentEncoded(const std::string& url) {
  std::string encoded;
  for (const char c : url) {
    if (c == ' ' || static_cast<unsigned char>(c) >= 0x80) {
      appendPercentEncoded(encoded, c);
    } else {
      encoded.push_back(c);
    }
  }
  return encoded;
}

/// Returns the line for curl. An empty value has a semicolon, since a colon alone would remove the field.
std::string headerLine(const HeaderField& field) {
  const bool isBlank = field.value.find_first_not_of(" \t\v\f") == field.value.npos;
  return isBlank ? field.name + ";" : field.name + ": " + field.value;
}

int asInt(std::chrono::milliseconds time) {
  return static_cast<int>(std::min<std::chrono::milliseconds::rep>(time.count(), INT_MAX));
}

}  // namespace

template <class Value>
void Transfer::set(CURLoption option, Value value) {
  const CURLcode result = curl_easy_setopt(handle(), option, value);
  if (setUp_ == CURLE_OK) setUp_ = result;
}

Transfer::Transfer(TransferContext& context) : context_(context), handle_(curl_easy_init()) {
  if (!handle_) throw std::bad_alloc();
  const HostSessionConfiguration& configuration = context.configuration;
  set(CURLOPT_NOSIGNAL, 1L);
  set(CURLOPT_QUICK_EXIT, 1L);
  set(CURLOPT_PROTOCOLS_STR, "http,https");
  set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
  set(CURLOPT_PATH_AS_IS, 1L);
  set(CURLOPT_USERAGENT, "Orvane/" ORVANE_VERSION);
  set(CURLOPT_ACCEPT_ENCODING, "");
  set(CURLOPT_COOKIEFILE, "");
  set(CURLOPT_SHARE, context.cookies.share());
  set(CURLOPT_CONNECT_TO, context.reroutes.get());
  set(CURLOPT_PROXY, configuration.proxy.c_str());
  set(CURLOPT_NOPROXY, "");
  if (!configuration.certificateAuthorities.empty()) {
    for (const CURLoption file : {CURLOPT_CAINFO, CURLOPT_PROXY_CAINFO})
      set(file, configuration.certificateAuthorities.c_str());
    for (const CURLoption folder : {CURLOPT_CAPATH, CURLOPT_PROXY_CAPATH})
      set(folder, static_cast<const char*>(nullptr));
  }
  // curl counts whole seconds, and still uses a connection whose count is at its limit.
  const auto keepAlive = static_cast<long>(configuration.keepAlive / std::chrono::seconds(1));
  if (keepAlive < 2) {
    set(CURLOPT_FORBID_REUSE, 1L);
  } else {
    set(CURLOPT_MAXAGE_CONN, keepAlive - 1);
  }
  // The engine checks time-outs, across redirects. curl divides this one among the addresses of a host.
  set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(asInt(configuration.idleTimeout)));
  set(CURLOPT_ERRORBUFFER, errorText_.data());
  for (const CURLoption self : {CURLOPT_PRIVATE, CURLOPT_WRITEDATA, CURLOPT_HEADERDATA, CURLOPT_XFERINFODATA,
                                CURLOPT_PREREQDATA, CURLOPT_OPENSOCKETDATA})
    set(self, this);

  const auto write = +[](char* bytes, std::size_t, std::size_t size, void* self) {
    return static_cast<Transfer*>(self)->take(bytes, size);
  };
  set(CURLOPT_WRITEFUNCTION, write);
  const auto writeHeader = +[](char* bytes, std::size_t, std::size_t size, void* self) {
    return static_cast<Transfer*>(self)->takeHeaderLine({bytes, size});
  };
  set(CURLOPT_HEADERFUNCTION, writeHeader);
  const auto progress = +[](void* self, curl_off_t, curl_off_t received, curl_off_t, curl_off_t sent) {
    return static_cast<Transfer*>(self)->noteProgress(received, sent) ? 0 : 1;
  };
  set(CURLOPT_NOPROGRESS, 0L);
  set(CURLOPT_XFERINFOFUNCTION, progress);
  const auto open = +[](void* self, curlsocktype, curl_sockaddr* address) {
    return static_cast<Transfer*>(self)->openSocket(*address);
  };
  set(CURLOPT_OPENSOCKETFUNCTION, open);
  const auto beforeSending = +[](void* self, char*, char*, int, int) {
    auto& transfer = *static_cast<Transfer*>(self);
    const bool mayGoOn = transfer.mayGoOn();
    transfer.exchange_.wasSent = true;
    return mayGoOn ? CURL_PREREQFUNC_OK : CURL_PREREQFUNC_ABORT;
  };
  set(CURLOPT_PREREQFUNCTION, beforeSending);
}

CURLcode Transfer::prepare(DataTask&& task) {
  task_ = std::move(task);
  exchange_ = {.lastActivity = context_.now};
  errorText_[0] = '\0';
  set(CURLOPT_URL, percentEncoded(task_.request.url()).c_str());
  setMethodAndBody();
  setHeaders();
  return setUp_;
}

void Transfer::setMethodAndBody() {
  const std::string& method = task_.request.method();
  const std::optional<Bytes>& body = task_.request.body();
  const bool isHead = method == "HEAD";
  // A body that is announced larger than allowed is refused at once. A reply to HEAD has none.
  constexpr std::uint64_t greatest = std::numeric_limits<curl_off_t>::max();
  const auto limit = std::min<std::uint64_t>(context_.configuration.maximumBodySize, greatest);
  set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(isHead ? 0 : limit));
  if ((body && !isHead) || method == "POST") {
    static constexpr char empty[] = "";
    const bool isEmpty = !body || body->empty();
    set(CURLOPT_POST, 1L);
    set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(isEmpty ? 0 : body->size()));
    set(CURLOPT_POSTFIELDS, isEmpty ? static_cast<const void*>(empty) : body->data());
  } else {
    set(CURLOPT_HTTPGET, 1L);
    if (isHead) set(CURLOPT_NOBODY, 1L);
  }
  const bool isImplied = method == "POST" || isHead || (method == "GET" && !body);
  set(CURLOPT_CUSTOMREQUEST, isImplied ? nullptr : method.c_str());
}

void Transfer::setHeaders() {
  const URLRequest& request = task_.request;
  const bool hasBody = request.body() && !request.body()->empty();
  headers_ = {};
  headers_.append("Expect:");  // No pause before a large body.
  if (!hasBody && !request.value("Content-Type")) headers_.append("Content-Type:");
  const char* cookie = nullptr;  // Separate, so that curl puts it into one line with the jar's.
  for (const HeaderField& field : request.headers()) {
    if (equalIgnoringCase(field.name, "Cookie")) {
      cookie = field.value.c_str();
    } else {
      headers_.append(headerLine(field));
    }
  }
  set(CURLOPT_COOKIE, cookie);
  set(CURLOPT_HTTPHEADER, headers_.get());
}

// curl calls the following functions, so they must not throw.

/// Returns true if curl may make a connection or send the request. curl does so again if a kept-alive
/// connection was lost. Only a request that changes nothing may be sent twice.
bool Transfer::mayGoOn() noexcept {
  const std::string& method = task_.request.method();
  if (!exchange_.wasSent || method == "GET" || method == "HEAD") return true;
  refuse(SessionFailure::connectionLost);
  return false;
}

/// Opens a connection that no child process inherits, and that ends if what was sent is not acknowledged in
/// time.
curl_socket_t Transfer::openSocket(const curl_sockaddr& address) noexcept {
  if (!mayGoOn()) return CURL_SOCKET_BAD;
#ifdef SOCK_CLOEXEC
  const int file = socket(address.family, address.socktype | SOCK_CLOEXEC, address.protocol);
#else
  const int file = socket(address.family, address.socktype, address.protocol);
  if (file >= 0) fcntl(file, F_SETFD, FD_CLOEXEC);
#endif
#ifdef TCP_USER_TIMEOUT
  const int limit = asInt(context_.configuration.acknowledgementTimeout);
  if (file >= 0) setsockopt(file, IPPROTO_TCP, TCP_USER_TIMEOUT, &limit, sizeof(limit));
#endif
  return file;
}

std::size_t Transfer::take(const char* bytes, std::size_t size) noexcept try {
  exchange_.lastActivity = Clock::now();
  if (size > context_.configuration.maximumBodySize - exchange_.body.size())
    return refuse(SessionFailure::dataTooLarge);
  if (exchange_.body.empty()) {
    curl_off_t announced = 0;  // Only a hint, so at most 1 MiB is reserved.
    curl_easy_getinfo(handle(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &announced);
    exchange_.body.reserve(static_cast<std::size_t>(std::clamp<curl_off_t>(announced, 0, 1 << 20)));
  }
  const auto* const first = reinterpret_cast<const std::uint8_t*>(bytes);
  exchange_.body.insert(exchange_.body.end(), first, first + size);
  return size;
} catch (const std::bad_alloc&) {
  fatal("HostSession: there is not enough memory for a reply");
}

std::size_t Transfer::takeHeaderLine(std::string_view line) noexcept {
  exchange_.lastActivity = Clock::now();
  exchange_.headerSize += line.size();
  if (exchange_.headerSize > maximumHeaderSize || ++exchange_.headerLines > maximumHeaderLines)
    return refuse(SessionFailure::dataTooLarge);
  if (line == "\r\n" || line == "\n") {
    const int status = statusCode();  // 0 if a proxy answers CONNECT.
    // Nothing asked the server to switch protocols.
    if (status == 101) return refuse(SessionFailure::cannotParseReply);
    exchange_.isHeaderWhole = status >= 200;
  }
  return line.size();
}

/// Returns false to end the exchange.
bool Transfer::noteProgress(curl_off_t received, curl_off_t sent) noexcept {
  if (received + sent != exchange_.bytes) exchange_.lastActivity = Clock::now();
  exchange_.bytes = received + sent;
  // Counted before decompression. curl itself checks this limit only since 8.4.
  if (static_cast<std::uint64_t>(received) > context_.configuration.maximumBodySize)
    refuse(SessionFailure::dataTooLarge);
  // The engine checks time-outs, but only when curl returns to it. curl reads all of a proxy's refusal in one
  // call, even if that never ends. A second is enough to read what has arrived.
  if (std::max(deadline(), context_.now + std::chrono::seconds(1)) <= Clock::now())
    refuse(SessionFailure::timedOut);
  return !exchange_.refusal;
}

/// Notes why the exchange ends. Returns the value that makes curl end it.
std::size_t Transfer::refuse(SessionFailure failure) noexcept {
  exchange_.refusal = failure;
  return CURL_WRITEFUNC_ERROR;
}

Clock::time_point Transfer::deadline() const noexcept {
  return std::min(exchange_.lastActivity + context_.configuration.idleTimeout, task_.deadline);
}

DataTaskResult Transfer::finish(CURLcode result) {
  Bytes body = std::exchange(exchange_.body, {});  // Also on failure: an idle transfer keeps no memory.
  // curl takes a header that is cut short for a reply without a body.
  if (result == CURLE_OK && !exchange_.isHeaderWhole) result = CURLE_PARTIAL_FILE;
  if (result == CURLE_OK) return {std::move(body), HTTPResponse{statusCode()}, nullptr};
  const char* const detail = errorText_[0] != '\0' ? errorText_.data() : curl_easy_strerror(result);
  return {std::nullopt, std::nullopt, makeSessionError(failure(result), task_.request.url(), detail)};
}

/// Returns what went wrong in the exchange that curl ended with `result`.
SessionFailure Transfer::failure(CURLcode result) const {
  if (exchange_.refusal) return *exchange_.refusal;
  // A header line beyond curl's limit of 100 KiB. That is CURLE_TOO_LARGE since 8.6.
  const bool isNamed = curl_version_info(CURLVERSION_NOW)->version_num >= 0x080600;
  if (isNamed ? static_cast<int>(result) == 100 : result == CURLE_OUT_OF_MEMORY && !exchange_.isHeaderWhole)
    return SessionFailure::dataTooLarge;
  long verification = 0, proxyAnswer = 0;
  curl_easy_getinfo(handle(), CURLINFO_SSL_VERIFYRESULT, &verification);
  curl_easy_getinfo(handle(), CURLINFO_HTTP_CONNECTCODE, &proxyAnswer);
  if (proxyAnswer >= 300) return SessionFailure::cannotConnectToHost;
  return sessionFailure(result, verification);
}

std::string_view Transfer::redirectLocation() const {
  if (!exchange_.isHeaderWhole || !isRedirect(statusCode())) return {};
  const char* location = nullptr;
  curl_easy_getinfo(handle(), CURLINFO_REDIRECT_URL, &location);
  return location ? location : "";
}

int Transfer::statusCode() const {
  long status = 0;
  curl_easy_getinfo(handle(), CURLINFO_RESPONSE_CODE, &status);
  return static_cast<int>(status);
}

}  // namespace orvane
