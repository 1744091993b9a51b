#include "orvane/platform/URLRequest.h"

#include <algorithm>
#include <array>

#include "orvane/base/ascii.h"

namespace orvane {
namespace {

bool isTokenCharacter(char c) {
  return isLetter(c) || isDigit(c) || std::string_view("!#$%&'*+-.^_`|~").find(c) != std::string_view::npos;
}

bool isToken(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), isTokenCharacter);
}

bool belongsToSession(std::string_view name) {
  constexpr std::array<std::string_view, 4> names = {"Content-Length", "Host", "Connection",
                                                     "Transfer-Encoding"};
  const auto isName = [name](std::string_view own) { return equalIgnoringCase(own, name); };
  return std::any_of(names.begin(), names.end(), isName);
}

}  // namespace

bool equalIgnoringCase(std::string_view a, std::string_view b) noexcept {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char inA, char inB) { return lowerCase(inA) == lowerCase(inB); });
}

// Defined once, because they are long and would otherwise be repeated wherever a request is handed on.
URLRequest::URLRequest(std::string url) : url_(std::move(url)) {}
URLRequest::URLRequest(const URLRequest& other) = default;
URLRequest::URLRequest(URLRequest&& other) noexcept = default;
URLRequest& URLRequest::operator=(const URLRequest& other) {
  return *this = URLRequest(other);
}
URLRequest& URLRequest::operator=(URLRequest&& other) noexcept = default;
URLRequest::~URLRequest() = default;

void URLRequest::setMethod(std::string_view method) {
  if (isToken(method)) method_ = method;
}

void URLRequest::addValue(std::string_view value, std::string_view name) {
  using namespace std::string_view_literals;
  constexpr std::string_view lineEnders = "\0\r\n"sv;
  if (!isToken(name) || value.find_first_of(lineEnders) != value.npos || belongsToSession(name)) return;
  for (HeaderField& field : headers_) {
    if (equalIgnoringCase(field.name, name)) {
      field.value.append(",").append(value);
      return;
    }
  }
  constexpr std::size_t usualCount = 4;
  if (headers_.empty()) headers_.reserve(usualCount);
  headers_.push_back({std::string(name), std::string(value)});
}

const std::string* URLRequest::value(std::string_view name) const noexcept {
  for (const HeaderField& field : headers_) {
    if (equalIgnoringCase(field.name, name)) return &field.value;
  }
  return nullptr;
}

}  // namespace orvane
