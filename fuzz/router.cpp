// The development service answers any sequence of requests with envelopes, and accepts only the right picture
// text and code.
//
// The input is strings, each ended by a backslash and a blank: verb and path, an additional header field,
// body, and so on.

#include "tools/devservice/Router.h"

#include <algorithm>
#include <fuzzer/FuzzedDataProvider.h>
#include <nlohmann/json.hpp>

#include "fuzz/fuzz.h"
#include "orvane/platform/URLRequest.h"
#include "tools/devservice/IdentityService.h"
#include "tools/support/Target.h"

namespace devservice {
namespace {

using Json = nlohmann::json;
using orvane::require;

std::pair<std::string, std::string> split(const std::string& text, char at) {
  const std::size_t place = std::min(text.find(at), text.size());
  return {text.substr(0, place), text.substr(std::min(place + 1, text.size()))};
}

HTTPRequest takeRequest(FuzzedDataProvider& input) {
  const auto [method, text] = split(input.ConsumeRandomLengthString(), ' ');
  const support::Target target = support::parseTarget(text);
  const auto field = split(input.ConsumeRandomLengthString(), ':');
  const std::string body = input.ConsumeRandomLengthString();
  HTTPRequest request{method, target.path, {}, body, "127.0.0.1", target.query, target.authority.has_value()};
  if (target.authority) request.headers.emplace_back("Host", *target.authority);
  request.headers.push_back(field);
  for (const auto& [name, value] :
       {std::pair("Content-Type", "application/json"), {"XRAPI-VERSION", "1.0"}, {"XRAPI-DEVICE-TYPE", "1"}})
    request.headers.emplace_back(name, value);
  return request;
}

/// A text member of the body, if it has it.
std::string member(const Json& body, const char* name) {
  return body.is_object() && body.contains(name) && body[name].is_string() ? body[name].get<std::string>()
                                                                           : "";
}

void checkEnvelope(const Json& envelope) {
  require(envelope.is_object() && envelope.size() == 3, "an envelope has three members");
  const auto isCode = [&](const CodeDescription& row) {
    return envelope.at("code") == static_cast<int>(row.code);
  };
  const auto row = std::find_if(codeTable().begin(), codeTable().end(), isCode);
  require(row != codeTable().end(), "the code is known");
  if (row->code == Code::success) return;
  require(envelope.at("msg").get<std::string>().starts_with(row->text), "a refusal says why");
  require(envelope.at("data").is_null(), "a refusal has no data");
}

void call(IdentityService& service, Router& router, const HTTPRequest& request) {
  const Json body = Json::parse(request.body, nullptr, false);
  const std::string mobile = member(body, "mobile");
  const Inspection before = service.inspect(mobile).value_or(Inspection());
  const HTTPReply reply = router.answer(request);
  router.log(request, reply);
  const Json envelope = Json::parse(reply.body, nullptr, false);
  if (reply.status == 204 || (Page::owns(request.path) && reply.status == 200)) return;
  if (InspectEndpoint::owns(request.path) && reply.status == 200)
    return require(envelope.is_structured(), "an inspection is JSON");
  if (mobile.starts_with(faultNumberPrefix)) return;  // May requested anything.
  checkEnvelope(envelope);
  if (envelope["code"] != 0) return;
  if (request.path == "/tenant/getVerifyCode")
    require(before.picture && orvane::equalIgnoringCase(*before.picture, member(body, "captcha")),
            "the picture was read");
  if (request.path == "/tenant/submitVerifyCode")
    require(before.code && *before.code == member(body, "verificationCode"), "the code was right");
  if (request.path == "/tenant/submitMobileInformation") require(before.signedIn, "the number had signed in");
}

}  // namespace
}  // namespace devservice

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace devservice;
  FuzzedDataProvider input(data, size);
  // No bits set: the picture AAAA and the code 000000.
  IdentityService service{{.now = [] { return TimePoint(); }, .random = [] { return 0U; }}};
  Router router(service, {"localhost"}, {});
  while (input.remaining_bytes() > 0) call(service, router, takeRequest(input));
  return 0;
}
