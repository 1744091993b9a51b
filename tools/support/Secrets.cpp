#include "tools/support/Secrets.h"

#include <algorithm>
#include <boost/beast/core/string.hpp>
#include <iterator>
#include <utility>

#include "tools/support/Json.h"

namespace support {
namespace {

// Deeper levels are left out, since the recursion must not exhaust the stack.
constexpr int deepestShownLevel = 32;
constexpr std::size_t longestShownArray = 16;
// More are left out, since each addition to an object searches it.
constexpr std::size_t mostShownMembers = 1000;

constexpr std::string_view separators = " -.()/";

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// Returns the text with ASCII letters in lower case.
std::string lowered(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
  return lower;
}

/// Returns how much of the text's start is the secret, in bytes, or 0. Both are in lower case.
std::size_t sizeAtStart(std::string_view text, std::string_view secret) {
  const bool isNumber = std::ranges::all_of(secret, isDigit);
  std::size_t at = 0;
  for (const char c : secret) {
    while (isNumber && at > 0 && at < text.size() && separators.find(text[at]) != text.npos) ++at;
    if (at == text.size() || text[at] != c) return 0;
    ++at;
  }
  return at;
}

/// Returns how many digits the text starts with if they may be a mobile number, else 0.
std::size_t numberAtStart(std::string_view text) {
  constexpr std::size_t fewestDigits = 7;
  const std::size_t size = std::min(text.find_first_not_of("0123456789"), text.size());
  return size >= fewestDigits ? size : 0;
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
    if (secrets.areMasked() && Secrets::isSecretMember(member.key())) {
      value = Secrets::mask;
    } else {
      maskValue(value, secrets);
    }
  }
  object = std::move(masked);
}

}  // namespace

bool Secrets::isSecretMember(std::string_view name) {
  constexpr std::string_view names[] = {"mobile", "captcha", "verificationCode", "IMEI", "IMSI"};
  return std::ranges::find(names, name) != std::end(names);
}

bool Secrets::isSecretField(std::string_view name) {
  constexpr std::string_view names[] = {"XRAPI-CLIENT-ID", "Cookie", "Authorization", "Proxy-Authorization"};
  return std::ranges::any_of(names, [name](auto secret) { return boost::beast::iequals(name, secret); });
}

void Secrets::add(std::string_view secret) {
  // A service may quote a mobile number without its plus sign, or with an encoded one.
  if (secret.starts_with('+')) secret.remove_prefix(1);
  if (!areMasked_ || secret.size() < 2) return;
  const std::lock_guard lock(mutex_);
  secrets_.push_back(lowered(secret));
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
  const std::string lower = lowered(text);
  std::string joined = lower;
  std::erase_if(joined, [](char c) { return separators.find(c) != separators.npos; });
  // Most strings have none of the secrets, and a search for each is fast, whatever a caller has sent.
  std::vector<std::string> present;
  const std::lock_guard lock(mutex_);
  std::ranges::copy_if(secrets_, std::back_inserter(present), [&](const std::string& secret) {
    return (std::ranges::all_of(secret, isDigit) ? joined : lower).find(secret) != lower.npos;
  });
  std::string result;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t size = 0;
    for (auto secret = present.begin(); size == 0 && secret != present.end(); ++secret) {
      size = sizeAtStart(std::string_view(lower).substr(at), *secret);
    }
    if (size == 0 && areMasked_) size = numberAtStart(text.substr(at));
    result.append(size > 0 ? mask : text.substr(at, 1));
    at += std::max<std::size_t>(size, 1);
  }
  return result;
}

std::string Secrets::maskedField(std::string_view name, std::string_view value) const {
  return areMasked_ && isSecretField(name) ? std::string(mask) : masked(value);
}

std::string Secrets::maskedBody(std::string_view body) const {
  std::size_t count = 0;
  const auto isShown = [&count](int depth, Json::parse_event_t event, const Json&) {
    return depth <= deepestShownLevel && (event != Json::parse_event_t::key || ++count <= mostShownMembers);
  };
  Json value = Json::parse(body, isShown, false);
  if (value.is_discarded()) return masked(body);
  maskValue(value, *this);
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace support
