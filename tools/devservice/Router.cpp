#include "tools/devservice/Router.h"

#include <string>

#include "tools/devservice/Limits.h"

namespace devservice {
namespace {

// By TransportFault.
constexpr std::string_view faultNotes[] = {"", "delayed", "dropped", "cut", "reset"};

std::string escaped(std::string_view text) {
  constexpr char digits[] = "0123456789abcdef";
  std::string result;
  for (const char c : text) {
    if (c >= ' ' && c <= '~') {
      result += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      result.append("\\x").append(1, digits[byte >> 4]).append(1, digits[byte & 15]);
    }
  }
  return result;
}

std::string lineOf(const LogEntry& entry) {
  std::string line =
      escaped(entry.method + " " + entry.path + " " + std::to_string(entry.status) + " " + entry.body);
  if (!entry.fault.empty()) line.append(", ").append(entry.fault);
  return line;
}

}  // namespace

Reply Router::answer(const Request& request) {
  if (request.method == "HEAD") {
    Request whole = request;
    whole.method = "GET";
    return answer(whole);
  }
  return Page::owns(request.path) ? page_.answer(request) : service_.answer(request);
}

void Router::log(const Request& request, const Reply& reply) {
  if (Page::owns(request.path) && reply.status < 400) return;
  const bool brief = reply.body.size() <= maxLogText;
  LogEntry entry{request.method, request.path, reply.status,
                 brief ? reply.body : std::to_string(reply.body.size()) + " bytes",
                 faultNotes[static_cast<std::size_t>(reply.fault)]};
  if (log_) log_(lineOf(entry));
  if (entry.path != "/inspect") page_.record(std::move(entry));  // asked by scripts, not by phones
}

}  // namespace devservice
