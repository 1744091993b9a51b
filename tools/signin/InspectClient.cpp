#include "tools/signin/InspectClient.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "orvane/host/HostSession.h"
#include "orvane/host/hostMainQueue.h"

namespace signin {

InspectClient::InspectClient(std::string authority) : url_("http://" + std::move(authority) + "/inspect") {
  orvane::HostSessionConfiguration configuration;
  configuration.totalTimeout = std::chrono::seconds(5);
  tool_.setSession(std::make_shared<orvane::HostSession>(configuration));
}

/// Returns what the service knows, by mobile number. Returns nothing if it is not a development service.
std::optional<orvane::Map> InspectClient::inspect() {
  std::optional<orvane::Value> result;
  const auto take = [&result](std::optional<orvane::Value> told, const orvane::ErrorPtr&) {
    result = std::move(told);
    orvane::hostMainQueue().stop();
  };
  tool_.requestJSON(orvane::HTTPMethod::GET, url_, std::nullopt, orvane::onMainQueue(take));
  orvane::hostMainQueue().run();
  orvane::Map* numbers = result ? result->map() : nullptr;
  const auto isMap = [](const auto& member) { return member.second.map() != nullptr; };
  if (!numbers || !std::ranges::all_of(*numbers, isMap)) return std::nullopt;
  return std::move(*numbers);
}

std::optional<std::string> InspectClient::known(std::string_view fact, const std::string& mobile) {
  const std::optional<orvane::Map> numbers = inspect();
  if (!numbers || !numbers->contains(mobile)) return std::nullopt;
  const orvane::Map& facts = *numbers->at(mobile).map();
  const auto found = facts.find(fact);
  const std::string* text = found == facts.end() ? nullptr : found->second.text();
  return text ? std::optional(*text) : std::nullopt;
}

}  // namespace signin
