#include "tools/signin/Secrets.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <nlohmann/json.hpp>
#include <utility>

#include "orvane/orvane.h"

namespace signin {
namespace {

using Json = nlohmann::ordered_json;

// Deeper levels are left out, since the recursion must not exhaust the stack.
constexpr int deepestShownLevel = 32;
constexpr std::size_t longestShownArray = 16;

bool isSecretMember(std::string_view name) {
  constexpr std::string_view names[] = {"mobile", "captcha", "verificationCode"};
  return std::ranges::find(names, name) != std::end(names);
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// Returns how much of the text's start is the secret, in bytes, or 0. See Secrets::masked().
std::size_t sizeAtStart(std::string_view text, std::string_view secret) {
  const bool isNumber = std::ranges::all_of(secret, isDigit);
  std::size_t at = 0;
  for (const char c : secret) {
    while (isNumber && at > 0 && at < text.size() && std::string_view(" -.()/").find(text[at]) != text.npos)
      ++at;
    if (at == text.size() || !orvane::equalIgnoringCase(text.substr(at, 1), {&c, 1})) return 0;
    ++at;
  }
  return at;
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
    if (secrets.areMasked() && isSecretMember(member.key())) {
      value = Secrets::mask;
    } else {
      maskValue(value, secrets);
    }
  }
  object = std::move(masked);
}

}  // namespace

void Secrets::add(std::string_view secret) {
  // A service may quote a mobile number without its plus sign, or with an encoded one.
  if (secret.starts_with('+')) secret.remove_prefix(1);
  if (!areMasked_ || secret.size() < 2) return;
  const std::lock_guard lock(mutex_);
  secrets_.emplace_back(secret);
  std::ranges::sort(secrets_, std::greater(), &std::string::size);
}

void Secrets::addNumber(std::string_view number) {
  constexpr std::size_t longestCountryCode = 3, fewestDigits = 6;
  add(number);
  std::string digits;
  std::ranges::copy_if(number, std::back_inserter(digits), isDigit);
  digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size()));
  for (std::size_t left = 0; left <= longestCountryCode && digits.size() >= left + fewestDigits; ++left) {
    add(digits.substr(left));
    add("0" + digits.substr(left));
  }
}

std::string Secrets::masked(std::string_view text) const {
  std::string result;
  const std::lock_guard lock(mutex_);
  while (!text.empty()) {
    std::size_t size = 0;
    for (auto secret = secrets_.begin(); size == 0 && secret != secrets_.end(); ++secret) {
      size = sizeAtStart(text, *secret);
    }
    result.append(size > 0 ? mask : text.substr(0, 1));
    text.remove_prefix(std::max<std::size_t>(size, 1));
  }
  return result;
}

std::string Secrets::maskedBody(std::string_view body) const {
  const auto isShown = [](int depth, Json::parse_event_t, const Json&) { return depth <= deepestShownLevel; };
  Json value = Json::parse(body, isShown, false);
  if (value.is_discarded()) return masked(body);
  maskValue(value, *this);
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace signin
