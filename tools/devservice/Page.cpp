#include "tools/devservice/Page.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

#include "tools/devservice/Json.h"
#include "tools/devservice/Limits.h"
#include "tools/devservice/LocalCaller.h"
#include "tools/devservice/PageFiles.h"
#include "tools/devservice/Picture.h"

namespace devservice {
namespace {

constexpr std::string_view picturePrefix = "/page/picture/";

/// On every reply. Scripts and styles are the page's own files; nobody frames it, embeds its parts or keeps a
/// code.
constexpr std::pair<std::string_view, std::string_view> guards[] = {
    {"Content-Security-Policy",
     "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self'; "
     "base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
    {"Cache-Control", "no-store"},
    {"Cross-Origin-Resource-Policy", "same-origin"},
    {"Referrer-Policy", "no-referrer"},
    {"X-Content-Type-Options", "nosniff"},
};

std::int64_t milliseconds(std::chrono::system_clock::time_point time) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
}

Json faults() {
  Json all = Json::array();
  for (const Fault& fault : faultTable()) {
    all.push_back({{"number", fault.number}, {"name", fault.name}, {"text", fault.text}});
  }
  return all;
}

Json messages(const IdentityService& service) {
  Json all = Json::array();
  for (const TextMessage& message : service.messages()) {
    all.push_back({{"id", message.id},
                   {"time", milliseconds(message.time)},
                   {"mobile", message.mobile},
                   {"text", message.text}});
  }
  return all;
}

Json numbers(const IdentityService& service) {
  Json all = Json::array();
  for (const auto& [mobile, known] : service.recent(maxShownNumbers)) {
    Json drawing;
    if (known.drawing) drawing = {{"text", known.drawing->text}, {"seed", known.drawing->seed}};
    all.push_back({{"mobile", mobile},
                   {"drawing", drawing},
                   {"pictureWaits", known.picture.has_value()},
                   {"codeWaits", known.code.has_value()},
                   {"signedIn", known.signedIn},
                   {"clientId", orNull(known.clientId)},
                   {"facts", orNull(known.facts)}});
  }
  return all;
}

}  // namespace

bool Page::owns(std::string_view path) {
  return path == "/" || path.starts_with("/page/");
}

Reply Page::answer(const Request& request) {
  const auto reply = [&] {
    if (!isLocalCaller(request)) return makeRefusal(403, Code::notLocal);
    const bool chooses = request.path == "/page/fault";
    if (request.method != (chooses ? "POST" : "GET")) return makeRefusal(405, Code::wrongMethod);
    if (chooses) return chooseFault(request);
    if (request.path == "/page/state") return state();
    if (request.path.starts_with(picturePrefix)) return picture(request.path.substr(picturePrefix.size()));
    const auto file = std::ranges::find(pageFiles(), request.path, &PageFile::path);
    if (file == pageFiles().end()) return makeRefusal(404, Code::unknownPath);
    return Reply{200, std::string(file->contentType), std::string(file->content)};
  };
  Reply guarded = reply();
  guarded.headers.assign(std::begin(guards), std::end(guards));
  return guarded;
}

void Page::record(LogEntry entry) {
  const auto now = milliseconds(std::chrono::system_clock::now());
  for (auto* text : {&entry.method, &entry.path}) text->resize(std::min(text->size(), maxLogText));
  const std::lock_guard lock(mutex_);
  if (log_.size() == maxLogEntries) log_.pop_front();
  log_.push_back({++recorded_, now, std::move(entry)});
}

Reply Page::state() const {
  const Fault* chosen = service_.chosenFault();
  Json all = {{"faults", faults()},
              {"chosenFault", chosen ? Json(chosen->number) : Json()},
              {"messages", messages(service_)},
              {"numbers", numbers(service_)},
              {"requests", Json::array()}};
  {
    const std::lock_guard lock(mutex_);
    for (const auto& [id, time, entry] : log_) {
      all["requests"].push_back({{"id", id},
                                 {"time", time},
                                 {"method", entry.method},
                                 {"path", entry.path},
                                 {"status", entry.status},
                                 {"body", entry.body},
                                 {"fault", entry.fault}});
    }
  }
  Reply reply;
  reply.body = all.dump(-1, ' ', false, Json::error_handler_t::replace);
  return reply;
}

Reply Page::picture(std::string_view mobile) const {
  const auto known = service_.inspect(mobile);
  if (!known || !known->drawing) return makeRefusal(404, Code::noPicture);
  const auto bytes = drawPicture(known->drawing->text, known->drawing->seed);
  return {200, "image/png", std::string(bytes.begin(), bytes.end())};
}

/// The body is {"fault": N}, or null for none.
Reply Page::chooseFault(const Request& request) {
  if (!isFromOwnPage(request)) return makeRefusal(403, Code::notLocal, "Origin");
  const Json object = Json::parse(request.body, nullptr, false);
  if (!object.is_object()) return makeRefusal(400, Code::malformedBody);
  const Json number = object.value("fault", Json("missing"));
  const auto fault =
      std::ranges::find_if(faultTable(), [&](const Fault& each) { return number == each.number; });
  if (fault == faultTable().end() && !number.is_null()) return makeRefusal(400, Code::badMember, "fault");
  service_.chooseFault(number.is_null() ? nullptr : &*fault);
  return makeReply({Code::success, "chosen", {}});
}

}  // namespace devservice
