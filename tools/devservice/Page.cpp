#include "tools/devservice/Page.h"

#include <algorithm>
#include <chrono>

#include "tools/devservice/Limits.h"
#include "tools/devservice/PageFile.h"
#include "tools/devservice/drawPicture.h"
#include "tools/devservice/makeReply.h"
#include "tools/support/Json.h"
#include "tools/support/Target.h"
#include "tools/support/milliseconds.h"

namespace devservice {
namespace {

using support::Json;
using support::orNull;

constexpr std::string_view picturePrefix = "/page/picture/";

Json faults() {
  Json all = Json::array();
  for (const Fault& fault : faultTable()) {
    all.push_back(
        {{"number", fault.number}, {"group", fault.group}, {"name", fault.name}, {"text", fault.text}});
  }
  return all;
}

Json chosen(const FaultChoice& choice) {
  if (!choice.requested.fault) return {};
  return {{"fault", choice.requested.fault->number},
          {"delay", choice.requested.delay.count()},
          {"every", choice.every}};
}

Json predictions(const Predictions& known) {
  return {
      {"code", orNull(known.code)}, {"pictureText", orNull(known.pictureText)}, {"seed", orNull(known.seed)}};
}

Json messages(const IdentityService& service) {
  Json all = Json::array();
  for (const TextMessage& message : service.messages()) {
    const auto known = service.inspect(message.mobile);
    all.push_back({{"id", message.id},
                   {"time", support::milliseconds(message.time)},
                   {"mobile", message.mobile},
                   {"text", message.text},
                   {"waits", known && known->code && known->messageId == message.id}});
  }
  return all;
}

Json numbers(const IdentityService& service, std::string_view filter) {
  Json all = Json::array();
  for (const auto& [mobile, known] : service.recent(maxShownNumbers, filter)) {
    Json drawing;
    if (known.drawing) drawing = {{"text", known.drawing->text}, {"seed", known.drawing->seed}};
    all.push_back({{"id", mobile},
                   {"drawing", drawing},
                   {"pictureWaits", known.picture.has_value()},
                   {"code", orNull(known.code)},
                   {"signedIn", known.signedIn},
                   {"clientId", orNull(known.clientId)},
                   {"facts", orNull(known.facts)}});
  }
  return all;
}

}  // namespace

Page::Page(IdentityService& service)
    : service_(service), run_(std::to_string(systemRandom()) + std::to_string(systemRandom())) {}

bool Page::owns(std::string_view path) {
  return path == "/" || path == "/openapi.json" || path.starts_with("/page/");
}

HTTPReply Page::answer(const HTTPRequest& request) {
  const bool chooses = request.path == "/page/fault";
  if (request.method != (chooses ? "POST" : "GET")) return refuseMethod(chooses ? "POST" : "GET, HEAD");
  if (chooses) return chooseFault(request);
  if (request.path == "/page/state") return state(request);
  if (request.path.starts_with(picturePrefix)) return picture(request.path.substr(picturePrefix.size()));
  const auto file = std::ranges::find(pageFiles(), request.path, &PageFile::path);
  if (file == pageFiles().end()) return makeRefusal(404, Code::unknownPath);
  return {200, std::string(file->contentType), std::string(file->content)};
}

HTTPReply Page::state(const HTTPRequest& request) const {
  const support::Members query = support::queryMembers(request.query);
  const auto filter = query.find("filter");
  const Json all = {{"run", run_},
                    {"predictions", predictions(service_.predictions())},
                    {"faults", faults()},
                    {"chosenFault", chosen(service_.chosenFault())},
                    {"messages", messages(service_)},
                    {"numberCount", service_.size()},
                    {"numbers", numbers(service_, filter == query.end() ? "" : filter->second)}};
  HTTPReply reply;
  reply.body = support::dumped(all);
  return reply;
}

HTTPReply Page::picture(std::string_view mobile) const {
  const auto known = service_.inspect(mobile);
  if (!known || !known->drawing) return makeRefusal(404, Code::noPicture);
  const auto bytes = drawPicture(known->drawing->text, known->drawing->seed);
  return {200, "image/png", std::string(bytes.begin(), bytes.end())};
}

/// Chooses the fault in the body: {"fault": N, "delay": MS, "every": N}. N is null for no fault; the last two
/// members may be missing.
HTTPReply Page::chooseFault(const HTTPRequest& request) {
  const nlohmann::json object = support::parsed(request.body);
  if (!object.is_object()) return makeRefusal(400, Code::malformedBody);
  if (!object.contains("fault")) return makeRefusal(400, Code::badMember, "fault");
  FaultChoice choice;
  for (const auto& [name, value] : object.items()) {
    const bool isFault = name == "fault";
    const bool isDelay = name == "delay";
    if (isFault && value.is_null()) continue;
    const std::int64_t most = isFault ? 99 : isDelay ? maxDelay.count() : maxEvery;
    const bool isKnown = isFault || isDelay || name == "every";
    if (!isKnown || !value.is_number_integer() || value < 0 || value > most)
      return makeRefusal(400, Code::badMember, name);
    const int number = value.get<int>();
    if (isDelay) {
      choice.requested.delay = std::chrono::milliseconds(number);
    } else if (!isFault) {
      choice.every = static_cast<unsigned>(number);
    } else if (choice.requested.fault = findFault(number); !choice.requested.fault) {
      return makeRefusal(400, Code::badMember, name);
    }
  }
  service_.chooseFault(choice);
  return makeReply({Code::success, "chosen", {}});
}

}  // namespace devservice
