#include "tools/support/HarFile.h"

#include <array>
#include <boost/beast/core/string.hpp>
#include <cstdint>
#include <cstdio>
#include <ctime>

#include "tools/support/Json.h"
#include "tools/support/Target.h"
#include "tools/support/milliseconds.h"

namespace support {
namespace {

/// Returns the time like "2026-11-22T06:46:16.123Z".
std::string dateText(std::chrono::system_clock::time_point time) {
  const std::int64_t count = milliseconds(time);
  const auto seconds = static_cast<std::time_t>(count / 1000);
  std::tm date{};
  gmtime_r(&seconds, &date);
  std::array<char, 32> text{};
  const std::size_t size = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S.", &date);
  std::snprintf(text.data() + size, text.size() - size, "%03dZ", static_cast<int>(count % 1000));
  return text.data();
}

Json pair(const std::string& name, const std::string& value) {
  return {{"name", name}, {"value", value}};
}

/// Returns the body without its secrets. If nothing is masked, it stays as it came, with all of a picture.
std::string bodyText(const std::string& body, const Secrets& secrets) {
  return secrets.areMasked() ? secrets.maskedBody(body) : body;
}

Json requestOf(const Exchange& exchange, const Secrets& secrets) {
  Json fields = Json::array(), parameters = Json::array();
  std::string type;
  for (const auto& [name, value] : exchange.headers) {
    fields.push_back(pair(name, secrets.maskedField(name, value)));
    if (boost::beast::iequals(name, "Content-Type")) type = value;
  }
  for (const auto& [name, value] : queryMembers(parseTarget(exchange.url).query)) {
    parameters.push_back(pair(secrets.masked(name), secrets.masked(value)));
  }
  Json request = {{"method", exchange.method}, {"url", secrets.masked(exchange.url)},
                  {"httpVersion", "HTTP/1.1"}, {"cookies", Json::array()},
                  {"headers", fields},         {"queryString", parameters},
                  {"headersSize", -1},         {"bodySize", exchange.requestSize}};
  if (exchange.requestBody)
    request["postData"] = {{"mimeType", type}, {"text", bodyText(*exchange.requestBody, secrets)}};
  return request;
}

Json responseOf(const Exchange& exchange, const Secrets& secrets) {
  Json content = {{"size", exchange.replySize}, {"mimeType", "application/json"}};
  if (exchange.replyBody) content["text"] = bodyText(*exchange.replyBody, secrets);
  Json response = {{"status", exchange.status}, {"statusText", ""},         {"httpVersion", "HTTP/1.1"},
                   {"cookies", Json::array()},  {"headers", Json::array()}, {"content", content},
                   {"redirectURL", ""},         {"headersSize", -1},        {"bodySize", exchange.replySize}};
  if (!exchange.comment.empty()) response["comment"] = secrets.masked(exchange.comment);
  return response;
}

}  // namespace

std::string harEntry(const Exchange& exchange, const Secrets& secrets) {
  const std::int64_t took = exchange.duration.count();
  return dumped({{"startedDateTime", dateText(exchange.start)},
                 {"time", took},
                 {"request", requestOf(exchange, secrets)},
                 {"response", responseOf(exchange, secrets)},
                 {"cache", Json::object()},
                 {"timings", {{"send", 0}, {"wait", took}, {"receive", 0}}}});
}

std::string harFile(std::string_view creator, std::span<const std::string> entries) {
  const std::string text =
      dumped({{"version", "1.2"}, {"creator", {{"name", creator}, {"version", ORVANE_VERSION}}}});
  std::string file = R"({"log":)" + text.substr(0, text.size() - 1) + R"(,"entries":[)";
  for (const std::string& entry : entries) file.append(&entry == entries.data() ? "\n" : ",\n").append(entry);
  return file + "\n]}}\n";
}

}  // namespace support
