#include "tools/signin/Trace.h"

#include <span>
#include <utility>

#include "tools/signin/Address.h"
#include "tools/signin/printable.h"
#include "tools/support/appendHexEscape.h"

namespace signin {
namespace {

constexpr std::size_t longestShownBody = 2000;

std::string_view textOf(std::span<const std::uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// Returns the text, cut between two characters if it is too long.
std::string shortened(std::string text) {
  if (text.size() <= longestShownBody) return text;
  std::size_t end = longestShownBody;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  text.resize(end);
  return text + "…";
}

/// Returns the URL with the mask in place of a name and password.
std::string maskedUser(const std::string& url) {
  const std::size_t at = url.rfind('@');
  if (at == url.npos) return url;
  const std::size_t scheme = url.find("//");
  return url.substr(0, scheme < at ? scheme + 2 : 0) + std::string(support::Secrets::mask) + url.substr(at);
}

/// Returns the text quoted as one word of a bash command, without line ends.
std::string shellWord(std::string_view text) {
  bool hasControls = false;
  for (std::size_t at = 0; at < text.size(); ++at) hasControls |= controlSize(text.substr(at)) > 0;
  std::string word(hasControls ? "$'" : "'");
  while (!text.empty()) {
    const std::size_t size = controlSize(text);
    const char c = text.front();
    for (const char control : text.substr(0, size)) support::appendHexEscape(word, control);
    if (size > 0) {
      text.remove_prefix(size);
      continue;
    }
    if (c == '\'') {
      word.append(hasControls ? "\\'" : "'\\''");
    } else if (c == '\\' && hasControls) {
      word.append("\\\\");
    } else {
      word.push_back(c);
    }
    text.remove_prefix(1);
  }
  return word + "'";
}

}  // namespace

Trace::Trace(orvane::HostSessionConfiguration configuration, std::shared_ptr<const support::Secrets> secrets)
    : configuration_(std::move(configuration)), secrets_(std::move(secrets)) {}

std::string Trace::headerWord(const orvane::HeaderField& field) const {
  if (field.value.empty()) return shellWord(field.name + ";");  // curl's syntax for a field without a value.
  return shellWord(field.name + ": " + secrets_->maskedField(field.name, field.value));
}

std::string Trace::requestLine(const orvane::URLRequest& request) const {
  std::string line = "curl -X " + request.method();
  for (const orvane::Reroute& reroute : configuration_.reroutes) {
    line.append(" --connect-to ");
    line += shellWord(Address{reroute.host, reroute.port}.authority() + ":" +
                      Address{reroute.toHost, reroute.toPort}.authority());
  }
  const bool hasProxy = !configuration_.proxy.empty();
  if (hasProxy) line.append(" -x ").append(shellWord(maskedUser(configuration_.proxy)));
  // curl would else heed the proxies, or the exceptions, in the environment, which the session ignores.
  line.append(hasProxy ? " --noproxy ''" : " --noproxy '*'");
  for (const orvane::HeaderField& field : request.headers()) {
    line.append(" -H ").append(headerWord(field));
  }
  if (request.body()) {
    line.append(" --data-raw ").append(shellWord(secrets_->maskedBody(textOf(*request.body()))));
  }
  return line.append(" ").append(shellWord(secrets_->masked(request.url())));
}

std::string Trace::replyLine(std::string_view url, const orvane::DataTaskResult& result,
                             std::chrono::milliseconds took) const {
  std::string line = secrets_->masked(url) + ": " + std::to_string(took.count()) + " ms, ";
  if (result.error) {
    line += secrets_->masked(orvane::errorDescription(*result.error));
    for (const auto& [key, value] : result.error->userInfo) {
      if (value.string())
        line.append(", ").append(key).append(": ").append(secrets_->masked(*value.string()));
    }
  } else {
    const std::string_view body = textOf(*result.body);
    line += "status " + std::to_string(result.response->statusCode) + ", " + std::to_string(body.size()) +
            " bytes";
    if (!body.empty()) line.append(": ").append(shortened(secrets_->maskedBody(body)));
  }
  return printable(line);
}

}  // namespace signin
