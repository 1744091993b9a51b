// curl connects only to where the library believes a URL to lead. No redirect takes credentials to another
// origin.
// The input is two URLs, each on a line.

#include <algorithm>
#include <curl/curl.h>

#include "adapters/host/Redirect.h"
#include "adapters/host/Transfer.h"
#include "fuzz/fuzz.h"
#include "orvane/base/ascii.h"
#include "orvane/platform/URLParts.h"

namespace orvane {
namespace {

/// Scheme, host and port that curl would go to, given that URL; empty where it would refuse.
std::string byCurl(const std::string& url) {
  static TransferContext context;
  static auto* const transfer = new Transfer(context);
  transfer->prepare({URLRequest(url), nullptr, {}});
  const char* prepared = nullptr;
  curl_easy_getinfo(transfer->handle(), CURLINFO_EFFECTIVE_URL, &prepared);

  const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> parsed(curl_url(), curl_url_cleanup);
  // As a transfer parses it.
  constexpr unsigned flags = CURLU_GUESS_SCHEME | CURLU_NON_SUPPORT_SCHEME | CURLU_PATH_AS_IS;
  if (curl_url_set(parsed.get(), CURLUPART_URL, prepared, flags) != CURLUE_OK) return "";
  std::string destination;
  for (const CURLUPart part : {CURLUPART_SCHEME, CURLUPART_HOST, CURLUPART_PORT}) {
    char* text = nullptr;
    curl_url_get(parsed.get(), part, &text, CURLU_DEFAULT_PORT);
    destination.append(text ? text : "none").append(" ");
    curl_free(text);
  }
  std::transform(destination.begin(), destination.end(), destination.begin(), lowerCase);
  return destination;
}

/// Returns true if the session carries out requests to that URL, which a server may have chosen.
bool isTried(const URLParts& parts) {
  return isSupportedScheme(parts.scheme) && !parts.host.empty();
}

void compare(const std::string& url) {
  const URLParts parts = splitURL(url);
  if (!isTried(parts)) return;
  const std::string destination = byCurl(url);
  if (destination.empty()) return;
  std::string plain(parts.scheme);
  plain.append("://").append(parts.host).append(":").append(parts.portOrDefault()).append("/");
  require(destination == byCurl(plain), "curl goes where the library believes the URL to lead");
}

void compareRedirect(const std::string& from, const std::string& location) {
  if (!isTried(splitURL(from)) || !isTried(splitURL(location))) return;
  URLRequest request(from);
  request.addValue("secret", "Authorization");
  const auto next = redirect(request, 302, location);
  const auto* followed = std::get_if<URLRequest>(&next);
  if (!followed || !followed->value("Authorization") || byCurl(from).empty() || byCurl(location).empty())
    return;
  require(byCurl(from) == byCurl(location), "credentials stay where they belong");
}

}  // namespace
}  // namespace orvane

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  if (text.find('\0') != text.npos) return 0;  // In no URL.
  const std::size_t lineEnd = std::min(text.find('\n'), text.size());
  const std::string first = text.substr(0, lineEnd);
  const std::string second = text.substr(std::min(lineEnd + 1, text.size()));
  orvane::compare(first);
  orvane::compareRedirect(first, second);
  return 0;
}
