#include "tools/devservice/Faults.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/devservice/Json.h"

namespace devservice {

struct Draft {
  Json object;
  std::optional<std::string> body = std::nullopt;  // instead of the object
  int status = 200;
  TransportFault transport = TransportFault::none;
};

namespace {

constexpr Fault table[] = {
    {1, "late", "the reply comes 1.5 s late", [](Draft& draft) { draft.transport = TransportFault::delay; }},
    {2, "dropped", "the connection is closed without a byte",
     [](Draft& draft) { draft.transport = TransportFault::drop; }},
    {3, "reset", "the connection is reset without a byte",
     [](Draft& draft) { draft.transport = TransportFault::reset; }},
    {4, "cut short", "the connection is closed after half of the body",
     [](Draft& draft) { draft.transport = TransportFault::cut; }},
    {5, "not JSON", "the body is not JSON",
     [](Draft& draft) { draft.body = "<html><body>It works!</body></html>"; }},
    {6, "empty", "the body is empty", [](Draft& draft) { draft.body = ""; }},
    {7, "status 500", "HTTP status 500 with a good body", [](Draft& draft) { draft.status = 500; }},
    {8, "refused", "the call is refused with code 4321", nullptr},
    {9, "no code", "\"code\" is missing", [](Draft& draft) { draft.object.erase("code"); }},
    {10, "no msg", "\"msg\" is missing", [](Draft& draft) { draft.object.erase("msg"); }},
    {11, "no data", "\"data\" is missing", [](Draft& draft) { draft.object.erase("data"); }},
    {12, "code as text", "\"code\" is a string",
     [](Draft& draft) { draft.object["code"] = draft.object["code"].dump(); }},
    {13, "msg as number", "\"msg\" is a number", [](Draft& draft) { draft.object["msg"] = 7; }},
    {14, "data as text", "\"data\" is a string", [](Draft& draft) { draft.object["data"] = "picture"; }},
    {15, "element 256", "\"data\" ends in the element 256",
     [](Draft& draft) { draft.object["data"].push_back(256); }},
    {16, "array", "the body is an array around the object",
     [](Draft& draft) { draft.object = Json::array({draft.object}); }},
    {17, "1 MiB", "\"data\" is filled up with zeros to 1 MiB",
     [](Draft& draft) {
       Json& data = draft.object["data"];
       std::vector<std::uint8_t> bytes;
       if (data.is_array()) bytes = data.get<std::vector<std::uint8_t>>();
       bytes.resize(oversizedDataSize);
       data = std::move(bytes);
     }},
};

}  // namespace

std::span<const Fault> faultTable() {
  return table;
}

const Fault* demandedFault(std::string_view mobile, Call call) {
  if (!mobile.starts_with(faultNumberPrefix)) return nullptr;
  const std::string_view digits = mobile.substr(faultNumberPrefix.size());
  if (digits.size() != 3 || !std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; }))
    return nullptr;
  if (digits[0] != '0' && digits[0] - '0' != static_cast<int>(call)) return nullptr;
  const int number = (digits[1] - '0') * 10 + (digits[2] - '0');
  const auto* found = std::ranges::find(table, number, &Fault::number);
  return found == std::end(table) ? nullptr : found;
}

Reply makeReply(const Envelope& envelope, const Fault* fault) {
  Draft draft{{{"code", static_cast<int>(envelope.code)}, {"msg", envelope.msg}, {"data", nullptr}}};
  if (envelope.data) draft.object["data"] = *envelope.data;
  if (fault && fault->spoil) fault->spoil(draft);
  return {draft.status, "application/json",
          draft.body ? *draft.body : draft.object.dump(-1, ' ', false, Json::error_handler_t::replace),
          draft.transport};
}

Reply makeRefusal(int status, Code reason, std::string_view detail) {
  Reply reply = makeReply(refusal(reason, detail));
  reply.status = status;
  return reply;
}

}  // namespace devservice
