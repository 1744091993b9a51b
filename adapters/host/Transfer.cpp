#include "adapters/host/Transfer.h"

#include <algorithm>
#include <cstdint>
#include <fcntl.h>
#include <limits>
#include <new>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <utility>

#include "adapters/host/Redirect.h"
#include "adapters/host/SessionError.h"
#include "orvane/base/appendPercentEncoded.h"

namespace orvane {
namespace {

constexpr const char* userAgent = "Orvane/" ORVANE_VERSION;

/// Limits on all header lines of an exchange: interim replies, the reply, trailers. Below the limits that
/// some versions of curl have.
constexpr std::size_t maximumHeaderSize = 256U << 10;  // In bytes.
constexpr std::size_t maximumHeaderLines = 4000;

bool isASCII(char c) {
  return static_cast<unsigned char>(c) < 0x80;
}

/// Returns the URL with bytes beyond ASCII percent-encoded. curl decodes those of the host again.
std::string percentEncoded(const std::string& url) {
  std::string encoded;
  for (const char c : url) {
    if (isASCII(c)) {
      encoded.push_back(c);
    } else {
      appendPercentEncoded(encoded, c);
    }
  }
  return encoded;
}

/// Returns the line for curl. An empty value has a semicolon, since a colon alone would remove the field.
std::string headerLine(const HeaderField& field) {
  const bool isBlank = field.value.find_first_not_of(" \t\v\f") == field.value.npos;
  return isBlank ? field.name + ";" : field.name + ": " + field.value;
}

/// For CURLOPT_OPENSOCKETFUNCTION: a connection that no child process inherits.
curl_socket_t openSocket(void*, curlsocktype, curl_sockaddr* address) noexcept {
#ifdef SOCK_CLOEXEC
  return socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
#else
  const int file = socket(address->family, address->socktype, address->protocol);
  if (file >= 0) fcntl(file, F_SETFD, FD_CLOEXEC);
  return file;
#endif
}

}  // namespace

template <class Value>
void Transfer::set(CURLoption option, Value value) {
  const CURLcode result = curl_easy_setopt(handle(), option, value);
  if (setUp_ == CURLE_OK) setUp_ = result;
}

Transfer::Transfer(TransferContext& context) : context_(context), handle_(curl_easy_init()) {
  const HostSessionConfiguration& configuration = context.configuration;
  set(CURLOPT_NOSIGNAL, 1L);
  set(CURLOPT_QUICK_EXIT, 1L);
  set(CURLOPT_PROTOCOLS_STR, "http,https");
  set(CURLOPT_PATH_AS_IS, 1L);
  set(CURLOPT_USERAGENT, userAgent);
  set(CURLOPT_ACCEPT_ENCODING, "");
  set(CURLOPT_COOKIEFILE, "");
  set(CURLOPT_SHARE, context.cookies.share());
  set(CURLOPT_CONNECT_TO, context.reroutes.get());
  set(CURLOPT_PROXY, configuration.proxy.c_str());
  set(CURLOPT_NOPROXY, "");
  if (!configuration.certificateAuthorities.empty()) {
    set(CURLOPT_CAINFO, configuration.certificateAuthorities.c_str());
    set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
  }
  // The engine sees to time-outs, across redirects. curl divides this one among the addresses of a host.
  set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(std::min<std::chrono::milliseconds::rep>(
                                     configuration.idleTimeout.count(), std::numeric_limits<int>::max())));
  set(CURLOPT_OPENSOCKETFUNCTION, &openSocket);
  set(CURLOPT_ERRORBUFFER, errorText_.data());
  set(CURLOPT_PRIVATE, this);

  using Self = Transfer;
  set(CURLOPT_WRITEDATA, this);
  set(
      CURLOPT_WRITEFUNCTION, +[](char* bytes, std::size_t one, std::size_t size, void* self) {
        return static_cast<Self*>(self)->take(bytes, one * size);
      });
  set(CURLOPT_HEADERDATA, this);
  set(
      CURLOPT_HEADERFUNCTION, +[](char* bytes, std::size_t one, std::size_t size, void* self) {
        return static_cast<Self*>(self)->takeHeaderLine({bytes, one * size});
      });
  set(CURLOPT_NOPROGRESS, 0L);
  set(CURLOPT_XFERINFODATA, this);
  set(
      CURLOPT_XFERINFOFUNCTION,
      +[](void* self, curl_off_t, curl_off_t received, curl_off_t, curl_off_t sent) {
        return static_cast<Self*>(self)->noteProgress(received, sent) ? 0 : 1;
      });
  // Called each time before curl sends the request. curl sends it again if a kept-alive connection was lost.
  // Only a request that changes nothing may be sent twice.
  set(CURLOPT_PREREQDATA, this);
  set(
      CURLOPT_PREREQFUNCTION, +[](void* self, char*, char*, int, int) {
        auto& transfer = *static_cast<Self*>(self);
        const bool mayRepeat =
            transfer.task_.request.method() == "GET" || transfer.task_.request.method() == "HEAD";
        return transfer.exchange_.attempts++ == 0 || mayRepeat ? CURL_PREREQFUNC_OK : CURL_PREREQFUNC_ABORT;
      });
}

CURLcode Transfer::prepare(DataTask&& task) {
  task_ = std::move(task);
  exchange_ = {.lastActivity = context_.now};
  errorText_[0] = '\0';
  const std::string& url = task_.request.url();
  set(CURLOPT_URL, std::all_of(url.begin(), url.end(), isASCII) ? url.c_str() : percentEncoded(url).c_str());
  setMethodAndBody();
  setHeaders();
  return setUp_;
}

void Transfer::setMethodAndBody() {
  const std::string& method = task_.request.method();
  const std::optional<Bytes>& body = task_.request.body();
  const bool isHead = method == "HEAD";
  // A body that is announced larger than allowed is refused at once. After HEAD none comes.
  constexpr std::uint64_t unlimited = 0;
  constexpr std::uint64_t greatest = std::numeric_limits<curl_off_t>::max();
  const auto limit =
      isHead ? unlimited : std::min<std::uint64_t>(context_.configuration.maximumBodySize, greatest);
  set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(limit));
  if ((body && !isHead) || method == "POST") {
    static constexpr char nothing[] = "";
    const bool isEmpty = !body || body->empty();
    set(CURLOPT_POST, 1L);
    set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(isEmpty ? 0 : body->size()));
    set(CURLOPT_POSTFIELDS, isEmpty ? static_cast<const void*>(nothing) : body->data());
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
  // The task before often had the same.
  if (headers_.get() && hasBody == bodyInHeaders_ && request.headers() == fieldsInHeaders_) return;
  fieldsInHeaders_ = std::vector(request.headers());
  bodyInHeaders_ = hasBody;
  headers_.clear();
  headers_.append("Expect:");  // No pause before a large body.
  if (!hasBody && !request.value("Content-Type")) headers_.append("Content-Type:");
  const char* cookie = nullptr;  // Separate, so that curl puts it into one line with the jar's.
  for (const HeaderField& field : fieldsInHeaders_) {
    if (equalIgnoringCase(field.name, "Cookie")) {
      cookie = field.value.c_str();
    } else {
      headers_.append(headerLine(field));
    }
  }
  set(CURLOPT_COOKIE, cookie);
  set(CURLOPT_HTTPHEADER, headers_.get());
}

/// Throws nothing, since curl calls it.
std::size_t Transfer::take(const char* bytes, std::size_t size) noexcept try {
  exchange_.lastActivity = context_.now;
  if (size > context_.configuration.maximumBodySize - exchange_.body.size()) {
    exchange_.isTooLarge = true;
    return CURL_WRITEFUNC_ERROR;
  }
  if (exchange_.body.empty()) {
    // The server's announcement is only a hint.
    constexpr curl_off_t greatestReservation = 1 << 20;
    curl_off_t announced = 0;
    curl_easy_getinfo(handle(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &announced);
    exchange_.body.reserve(
        static_cast<std::size_t>(std::clamp<curl_off_t>(announced, 0, greatestReservation)));
  }
  const auto* const first = reinterpret_cast<const std::uint8_t*>(bytes);
  exchange_.body.insert(exchange_.body.end(), first, first + size);
  return size;
} catch (const std::bad_alloc&) {
  exchange_.isTooLarge = true;
  return CURL_WRITEFUNC_ERROR;
}

std::size_t Transfer::takeHeaderLine(std::string_view line) noexcept {
  exchange_.lastActivity = context_.now;
  if (line.starts_with("HTTP/")) exchange_.isHeaderWhole = false;
  if (line == "\r\n" || line == "\n") exchange_.isHeaderWhole = true;
  constexpr std::string_view cookie = "Set-Cookie:";
  if (equalIgnoringCase(line.substr(0, cookie.size()), cookie)) context_.cookies.note(line.size());
  exchange_.headerSize += line.size();
  exchange_.isTooLarge =
      exchange_.headerSize > maximumHeaderSize || ++exchange_.headerLines > maximumHeaderLines;
  return exchange_.isTooLarge ? 0 : line.size();
}

/// Returns false if the body is too large before decompression. curl itself checks that only since 8.4.
bool Transfer::noteProgress(curl_off_t received, curl_off_t sent) noexcept {
  if (received + sent != exchange_.bytes) exchange_.lastActivity = context_.now;
  exchange_.bytes = received + sent;
  exchange_.isTooLarge =
      exchange_.isTooLarge || static_cast<std::uint64_t>(received) > context_.configuration.maximumBodySize;
  return !exchange_.isTooLarge;
}

Clock::time_point Transfer::end() const noexcept {
  return std::min(exchange_.lastActivity + context_.configuration.idleTimeout, task_.deadline);
}

DataTaskResult Transfer::finish(CURLcode result) {
  Bytes body =
      std::exchange(exchange_.body, {});  // Also on failure: an idle transfer keeps no memory for it.
  // curl takes a header that is cut short for a reply without a body.
  if (result == CURLE_OK && !exchange_.isHeaderWhole) result = CURLE_PARTIAL_FILE;
  if (result == CURLE_OK) return {std::move(body), HTTPResponse{statusCode()}, nullptr};
  long verification = 0;
  curl_easy_getinfo(handle(), CURLINFO_SSL_VERIFYRESULT, &verification);
  const SessionErrorCode code =
      exchange_.isTooLarge ? SessionErrorCode::dataTooLarge : sessionErrorCode(result, verification);
  const char* const detail = errorText_[0] != '\0' ? errorText_.data() : curl_easy_strerror(result);
  return {std::nullopt, std::nullopt, makeSessionError(code, task_.request.url(), detail)};
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
