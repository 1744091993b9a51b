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
    {lateFault, "network", "late", "the reply comes late, after 1.5 s or as long as was chosen",
     [](Draft& draft) { draft.transport = TransportFault::delay; }},
    {2, "network", "dropped", "the connection is closed without a byte",
     [](Draft& draft) { draft.transport = TransportFault::drop; }},
    {3, "network", "reset", "the connection is reset without a byte",
     [](Draft& draft) { draft.transport = TransportFault::reset; }},
    {4, "network", "cut short", "the connection is closed after half of the body",
     [](Draft& draft) { draft.transport = TransportFault::cut; }},
    {5, "HTTP", "not JSON", "the body is not JSON",
     [](Draft& draft) { draft.body = "<html><body>It works!</body></html>"; }},
    {6, "HTTP", "empty", "the body is empty", [](Draft& draft) { draft.body = ""; }},
    {7, "HTTP", "status 500", "HTTP status 500 with a good body", [](Draft& draft) { draft.status = 500; }},
    {8, "reply", "refused", "the call is refused with code 4321", nullptr},
    {9, "reply", "no code", "\"code\" is missing", [](Draft& draft) { draft.object.erase("code"); }},
    {10, "reply", "no msg", "\"msg\" is missing", [](Draft& draft) { draft.object.erase("msg"); }},
    {11, "reply", "no data", "\"data\" is missing", [](Draft& draft) { draft.object.erase("data"); }},
    {12, "reply", "code as text", "\"code\" is a string",
     [](Draft& draft) { draft.object["code"] = draft.object["code"].dump(); }},
    {13, "reply", "msg as number", "\"msg\" is a number", [](Draft& draft) { draft.object["msg"] = 7; }},
    {14, "reply", "data as text", "\"data\" is a string",
     [](Draft& draft) { draft.object["data"] = "picture"; }},
    {15, "reply", "element 256", "\"data\" ends in the element 256",
     [](Draft& draft) { draft.object["data"].push_back(256); }},
    {16, "reply", "array", "the body is an array around the object",
     [](Draft& draft) { draft.object = Json::array({draft.object}); }},
    {17, "reply", "1 MiB", "\"data\" is filled up with zeros to 1 MiB",
     [](Draft& draft) {
       Json& data = draft.object["data"];
       std::vector<std::uint8_t> bytes;
       if (data.is_array()) bytes = data.get<std::vector<std::uint8_t>>();
       bytes.resize(oversizedDataSize);
       data = std::move(bytes);
     }},
    {18, "network", "silent", "the call is never answered, and the connection stays",
     [](Draft& draft) { draft.transport = TransportFault::silence; }},
};

/// The number that the digits make; nothing where there are others.
std::optional<int> numberOf(std::string_view digits) {
  int number = 0;
  for (const char c : digits) {
    if (c < '0' || c > '9') return std::nullopt;
    number = number * 10 + (c - '0');
  }
  return number;
}

}  // namespace

std::span<const Fault> faultTable() {
  return table;
}

const Fault* findFault(int number) {
  const auto* found = std::ranges::find(table, number, &Fault::number);
  return found == std::end(table) ? nullptr : found;
}

Demand demandOf(std::string_view mobile, Call call) {
  if (!mobile.starts_with(faultNumberPrefix)) return {};
  const std::string_view digits = mobile.substr(faultNumberPrefix.size());
  if (digits.size() != 3 && digits.size() != 7) return {};
  const auto hit = numberOf(digits.substr(0, 1));
  const auto fault = numberOf(digits.substr(1, 2));
  const auto hundredths = numberOf(digits.substr(3));
  if (!hit || !fault || !hundredths || (*hit != 0 && *hit != static_cast<int>(call))) return {};
  if (digits.size() == 3) return {findFault(*fault)};
  const std::chrono::milliseconds delay{*hundredths * 10};
  return *fault == lateFault && delay <= maxDelay ? Demand{findFault(lateFault), delay} : Demand{};
}

Reply makeReply(const Envelope& envelope, const Demand& demand) {
  Draft draft{{{"code", static_cast<int>(envelope.code)}, {"msg", envelope.msg}, {"data", nullptr}}};
  if (envelope.data) draft.object["data"] = *envelope.data;
  if (demand.fault && demand.fault->spoil) demand.fault->spoil(draft);
  return {.status = draft.status,
          .body = draft.body ? *draft.body : dumped(draft.object),
          .fault = draft.transport,
          .delay = demand.delay};
}

Reply makeRefusal(int status, Code reason, std::string_view detail) {
  Reply reply = makeReply(refusal(reason, detail));
  reply.status = status;
  return reply;
}

}  // namespace devservice
