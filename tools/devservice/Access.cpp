#include "tools/devservice/Access.h"

#include <algorithm>
#include <boost/beast/core/string.hpp>
#include <cstddef>

#include "tools/devservice/isFromOwnOrigin.h"
#include "tools/devservice/isLocalCaller.h"
#include "tools/devservice/makeReply.h"
#include "tools/support/Target.h"

namespace devservice {
namespace {

constexpr std::string_view cookieName = "orvane-token=";

constexpr std::string_view formStart =
    R"(<!doctype html>
<html lang="en">
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta name="color-scheme" content="light dark">
<title>Orvane development service</title>
<h1>Orvane development service</h1>
<form method="post" action="/page/token">
<p>
<label>Token <input name="token" type="password" autocomplete="current-password" required autofocus></label>
<button>Open</button></p>
)";

/// Returns the form with a sentence in it. Its header fields replace the page's: they let a browser send the
/// form, and send it with an origin, which it withholds if it may not send a referrer.
HTTPReply form(int status, std::string_view sentence) {
  HTTPReply reply{status, "text/html; charset=utf-8", std::string(formStart)};
  reply.body.append("<p role=\"status\">").append(sentence).append("</p>\n</form>\n");
  reply.headers = {
      {"Content-Security-Policy",
       "default-src 'none'; base-uri 'none'; form-action 'self'; frame-ancestors 'none'"},
      {"Referrer-Policy", "same-origin"},
  };
  if (status == 401) reply.headers.emplace_back("WWW-Authenticate", "Bearer");
  return reply;
}

}  // namespace

std::optional<HTTPReply> Access::refusal(const HTTPRequest& request) const {
  if (isLocalCaller(request)) return std::nullopt;
  if (token_.empty() || !isFromOwnOrigin(request)) return makeRefusal(403, Code::notLocal);
  if (hasToken(request)) return std::nullopt;
  if (request.path == "/") return form(401, "The service was started with --token TEXT. Enter that text.");
  HTTPReply reply = makeRefusal(401, Code::noToken);
  reply.headers.emplace_back("WWW-Authenticate", "Bearer");
  return reply;
}

HTTPReply Access::enter(const HTTPRequest& request) const {
  if (token_.empty()) return makeRefusal(404, Code::unknownPath);
  if (request.method != "POST") return refuseMethod("POST");
  if (!isFromOwnOrigin(request)) return makeRefusal(403, Code::notLocal);
  const support::Members members = support::queryMembers(request.body);
  const auto token = members.find("token");
  if (token == members.end() || !isToken(token->second)) return form(403, "That is not the token.");
  HTTPReply reply{303, "text/plain", ""};
  reply.headers = {{"Location", "/"},
                   {"Set-Cookie", std::string(cookieName) + token_ + "; Path=/; HttpOnly; SameSite=Strict"}};
  return reply;
}

/// Compares with the token, in a time that does not tell how many characters are right.
bool Access::isToken(std::string_view text) const {
  unsigned difference = text.size() == token_.size() ? 0 : 1;
  for (std::size_t i = 0; i < text.size(); ++i)
    difference |= static_cast<unsigned>(text[i] ^ token_[i % token_.size()]);
  return difference == 0;
}

bool Access::hasToken(const HTTPRequest& request) const {
  constexpr std::string_view scheme = "Bearer ";
  const std::string_view authorization = request.header("Authorization").value_or("");
  if (boost::beast::iequals(authorization.substr(0, scheme.size()), scheme))
    return isToken(authorization.substr(scheme.size()));
  // "a=b; orvane-token=TEXT; c=d"
  std::string_view cookies = request.header("Cookie").value_or("");
  while (!cookies.empty()) {
    const std::string_view cookie = cookies.substr(0, cookies.find("; "));
    if (cookie.starts_with(cookieName) && isToken(cookie.substr(cookieName.size()))) return true;
    cookies.remove_prefix(std::min(cookie.size() + 2, cookies.size()));
  }
  return false;
}

}  // namespace devservice
