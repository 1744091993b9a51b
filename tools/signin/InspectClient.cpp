#include "tools/signin/InspectClient.h"

#include <memory>
#include <utility>

#include "orvane/host/HostSession.h"
#include "orvane/host/hostMainQueue.h"
#include "tools/devservice/Code.h"

namespace signin {

InspectClient::InspectClient(std::string authority) : url_("http://" + std::move(authority) + "/inspect") {
  orvane::HostSessionConfiguration configuration;
  configuration.totalTimeout = std::chrono::seconds(5);
  tool_.setSession(std::make_shared<orvane::HostSession>(configuration));
}

/// Returns the reply of /inspect for the number, an entry or a refusal. Returns nullopt if no JSON object
/// came.
std::optional<orvane::Map> InspectClient::inspect(std::string_view mobile) {
  std::optional<orvane::Value> result;
  const auto take = [&result](std::optional<orvane::Value> told, const orvane::ErrorPtr&) {
    result = std::move(told);
    orvane::hostMainQueue().stop();
  };
  tool_.requestJSON(orvane::HTTPMethod::GET, url_, orvane::Map{{"mobile", mobile}},
                    orvane::onMainQueue(take));
  orvane::hostMainQueue().run();
  orvane::Map* reply = result ? result->map() : nullptr;
  return reply ? std::optional(std::move(*reply)) : std::nullopt;
}

bool InspectClient::isThere() {
  // No number is empty, so a development service refuses this with a code that no other service has.
  const auto reply = inspect("");
  const auto code = reply ? reply->find("code") : orvane::Map::const_iterator();
  if (!reply || code == reply->end()) return false;
  const std::int64_t* number = code->second.integer();
  return number && *number == static_cast<int>(devservice::Code::unknownNumber);
}

std::optional<std::string> InspectClient::known(std::string_view fact, const std::string& mobile) {
  const std::optional<orvane::Map> entry = inspect(mobile);
  const auto found = entry ? entry->find(fact) : orvane::Map::const_iterator();
  if (!entry || found == entry->end()) return std::nullopt;
  const std::string* text = found->second.string();
  return text ? std::optional(*text) : std::nullopt;
}

}  // namespace signin
