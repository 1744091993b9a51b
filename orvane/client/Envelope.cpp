#include "orvane/client/Envelope.h"

#include "orvane/base/fatal.h"
#include "orvane/client/ServiceAddress.h"

namespace orvane {

Headers serviceHeaders(const std::optional<std::string>& clientId) {
  Headers headers = {
      {"Content-Type", "application/json"}, {"XRAPI-VERSION", "1.0"}, {"XRAPI-DEVICE-TYPE", "1"}};
  if (clientId) headers.emplace("XRAPI-CLIENT-ID", *clientId);
  return headers;
}

void send(NetworkManager& transport, const ServiceCall& call, Map body, NetworkTool::Completion completion) {
  transport.requestJSON(HTTPMethod::JSON_POST, std::string(serviceBaseURL()).append(call.path),
                        std::move(body), std::move(completion));
}

Reply::Reply(const ServiceCall& call, std::optional<Value> result) : call_(call) {
  if (!result) fail("there is no reply");
  if (!result->map()) fail("the reply is not a map");
  value_ = *std::move(result);
}

std::int64_t Reply::code() const {
  const Value* code = find("code");
  if (!code) fail("the reply has no \"code\"");
  const std::optional<std::int64_t> integer = code->asInteger();
  if (!integer) fail("the reply's \"code\" is not a number");
  return *integer;
}

std::string Reply::msg() const {
  const Value* msg = find("msg");
  if (!msg) fail("the reply has no \"msg\"");
  if (!msg->text()) fail("the reply's \"msg\" is not a text");
  return *msg->text();
}

Array& Reply::data() {
  Map& members = *value_.map();
  const auto data = members.find("data");
  if (data == members.end()) fail("the reply has no \"data\"");
  if (!data->second.array()) fail("the reply's \"data\" is not an array");
  return *data->second.array();
}

void Reply::fail(std::string_view what) const {
  fatal(std::string(call_.name).append(": ").append(what));
}

const Value* Reply::find(std::string_view key) const {
  const auto found = value_.map()->find(key);
  return found == value_.map()->end() ? nullptr : &found->second;
}

ErrorPtr refusal(std::string message, std::int64_t code) {
  return std::make_shared<const Error>(Error{std::move(message), code, {}});
}

}  // namespace orvane
