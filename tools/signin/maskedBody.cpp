#include "tools/signin/maskedBody.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <utility>

namespace signin {
namespace {

using Json = nlohmann::ordered_json;

constexpr int deepestShownLevel =
    32;  // what is deeper is left out: the walk below must not exhaust the stack
constexpr std::size_t longestShownArray = 16;

bool isSecretMember(std::string_view name) {
  constexpr std::string_view names[] = {"mobile", "captcha", "verificationCode"};
  return std::ranges::find(names, name) != std::end(names);
}

void maskObject(Json& object, const Secrets& secrets);

void maskValue(Json& value, const Secrets& secrets) {
  if (value.is_object()) {
    maskObject(value, secrets);
  } else if (value.is_array()) {
    const bool isLong = value.size() > longestShownArray;
    if (isLong && std::ranges::all_of(value, [](const Json& element) { return element.is_number(); })) {
      value = std::string("<").append(std::to_string(value.size())).append(" bytes>");
    } else {
      for (Json& element : value) maskValue(element, secrets);
    }
  } else {
    const std::string text = value.is_string() ? value.get<std::string>() : value.dump();
    if (std::string masked = secrets.masked(text); masked != text) value = std::move(masked);
  }
}

void maskObject(Json& object, const Secrets& secrets) {
  Json masked = Json::object();
  for (const auto& member : object.items()) {
    Json& value = masked[secrets.masked(member.key())] = std::move(member.value());
    if (isSecretMember(member.key())) {
      value = mask;
    } else {
      maskValue(value, secrets);
    }
  }
  object = std::move(masked);
}

}  // namespace

std::string maskedBody(std::string_view body, const Secrets& secrets) {
  const auto isShown = [](int depth, Json::parse_event_t, const Json&) { return depth <= deepestShownLevel; };
  Json value = Json::parse(body, isShown, false);
  if (value.is_discarded()) return secrets.masked(body);
  maskValue(value, secrets);
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace signin
