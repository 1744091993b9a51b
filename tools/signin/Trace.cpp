#include "tools/signin/Trace.h"

#include <algorithm>
#include <cstdio>
#include <ctime>

#include "tools/signin/Options.h"
#include "tools/signin/Terminal.h"

namespace signin {
namespace {

constexpr std::size_t longestShownBody = 2000;

std::string_view textOf(const orvane::Bytes& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// Cut between two characters.
std::string shortened(std::string text) {
  if (text.size() <= longestShownBody) return text;
  std::size_t end = longestShownBody;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  text.resize(end);
  return text + "…";
}

/// The URL without the name and password in it, if it has any.
std::string maskedUser(const std::string& url) {
  const std::size_t at = url.rfind('@');
  if (at == url.npos) return url;
  const std::size_t scheme = url.find("//");
  return url.substr(0, scheme < at ? scheme + 2 : 0) + std::string(Secrets::mask) + url.substr(at);
}

std::string headerWord(const orvane::HeaderField& field, const Secrets& secrets) {
  if (field.value.empty()) return shellWord(field.name + ";");  // curl's way to send an empty one
  const bool isSecret = secrets.areMasked() && orvane::equalIgnoringCase(field.name, "XRAPI-CLIENT-ID");
  return shellWord(field.name + ": " + (isSecret ? std::string(Secrets::mask) : secrets.masked(field.value)));
}

}  // namespace

std::string shellWord(std::string_view text) {
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7F; };
  const bool hasControls = std::ranges::any_of(text, isControl);
  std::string word(hasControls ? "$'" : "'");
  for (const char c : text) {
    if (isControl(c)) {
      word.append(printable({&c, 1}));
    } else if (c == '\'') {
      word.append(hasControls ? "\\'" : "'\\''");
    } else if (c == '\\' && hasControls) {
      word.append("\\\\");
    } else {
      word.push_back(c);
    }
  }
  return word + "'";
}

std::string timeText() {
  const auto now = std::chrono::system_clock::now();
  const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  const auto milliseconds =
      std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count();
  std::tm local{};
  localtime_r(&seconds, &local);
  char text[32];
  const std::size_t size = std::strftime(text, sizeof text, "# %H:%M:%S.", &local);
  std::snprintf(text + size, sizeof text - size, "%03d", static_cast<int>(milliseconds % 1000));
  return text;
}

std::string requestLine(const orvane::URLRequest& request,
                        const orvane::HostSessionConfiguration& configuration, const Secrets& secrets) {
  std::string line = "curl -X " + request.method();
  for (const orvane::Reroute& reroute : configuration.reroutes) {
    line.append(" --connect-to ");
    line += shellWord(Address{reroute.host, reroute.port}.authority() + ":" +
                      Address{reroute.toHost, reroute.toPort}.authority());
  }
  if (!configuration.proxy.empty()) line.append(" -x ").append(shellWord(maskedUser(configuration.proxy)));
  for (const orvane::HeaderField& field : request.headers()) {
    line.append(" -H ").append(headerWord(field, secrets));
  }
  if (request.body()) {
    line.append(" --data-raw ").append(shellWord(secrets.maskedBody(textOf(*request.body()))));
  }
  return line.append(" ").append(shellWord(secrets.masked(request.url())));
}

std::string replyLine(std::string_view url, const orvane::DataTaskResult& result,
                      std::chrono::milliseconds took, const Secrets& secrets) {
  std::string line = secrets.masked(url) + ": " + std::to_string(took.count()) + " ms, ";
  if (result.error) {
    line += secrets.masked(orvane::description(*result.error));
    for (const auto& [key, value] : result.error->userInfo) {
      if (value.text()) line.append(", ").append(key).append(": ").append(secrets.masked(*value.text()));
    }
  } else {
    const std::string_view body = textOf(*result.body);
    line += "status " + std::to_string(result.response->statusCode) + ", " + std::to_string(body.size()) +
            " bytes";
    if (!body.empty()) line.append(": ").append(shortened(secrets.maskedBody(body)));
  }
  return printable(line);
}

}  // namespace signin
