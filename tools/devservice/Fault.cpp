#include "tools/devservice/Fault.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "tools/devservice/ReplyDraft.h"
#include "tools/devservice/countsFromOne.h"
#include "tools/support/Json.h"

namespace devservice {
namespace {

constexpr Fault table[] = {
    {lateFault, "network", "late", "the reply is delayed by 1.5 s, or by the delay that was chosen",
     [](ReplyDraft& draft) { draft.transport = TransportFault::delay; }},
    {2, "network", "dropped", "the connection is closed without a reply",
     [](ReplyDraft& draft) { draft.transport = TransportFault::drop; }},
    {3, "network", "reset", "the connection is reset without a reply",
     [](ReplyDraft& draft) { draft.transport = TransportFault::reset; }},
    {4, "network", "cut short", "the connection is closed after half of the body",
     [](ReplyDraft& draft) { draft.transport = TransportFault::cut; }},
    {5, "HTTP", "not JSON", "the body is not JSON",
     [](ReplyDraft& draft) { draft.body = "<html><body>It works!</body></html>"; }},
    {6, "HTTP", "empty", "the body is empty", [](ReplyDraft& draft) { draft.body = ""; }},
    {7, "HTTP", "status 500", "HTTP status 500, but a good body",
     [](ReplyDraft& draft) { draft.status = 500; }},
    {8, "reply", "refused", "the call is refused with code 4321", nullptr},
    {9, "reply", "no code", "\"code\" is missing", [](ReplyDraft& draft) { draft.object.erase("code"); }},
    {10, "reply", "no msg", "\"msg\" is missing", [](ReplyDraft& draft) { draft.object.erase("msg"); }},
    {11, "reply", "no data", "\"data\" is missing", [](ReplyDraft& draft) { draft.object.erase("data"); }},
    {12, "reply", "code as text", "\"code\" is a string",
     [](ReplyDraft& draft) { draft.object["code"] = draft.object["code"].dump(); }},
    {13, "reply", "msg as number", "\"msg\" is a number", [](ReplyDraft& draft) { draft.object["msg"] = 7; }},
    {14, "reply", "data as text", "\"data\" is a string",
     [](ReplyDraft& draft) { draft.object["data"] = "picture"; }},
    {15, "reply", "element 256", "\"data\" ends in the element 256",
     [](ReplyDraft& draft) { draft.object["data"].push_back(256); }},
    {16, "reply", "array", "the body is an array around the object",
     [](ReplyDraft& draft) { draft.object = support::Json::array({draft.object}); }},
    {17, "reply", "1 MiB", "\"data\" is padded with zeros to 1 MiB",
     [](ReplyDraft& draft) {
       support::Json& data = draft.object["data"];
       std::vector<std::uint8_t> bytes;
       if (data.is_array()) bytes = data.get<std::vector<std::uint8_t>>();
       bytes.resize(oversizedDataSize);
       data = std::move(bytes);
     }},
    {18, "network", "silent", "the call is never answered, and the connection stays open",
     [](ReplyDraft& draft) { draft.transport = TransportFault::silence; }},
};
static_assert(countsFromOne(table, &Fault::number));

}  // namespace

std::span<const Fault> faultTable() {
  return table;
}

const Fault* findFault(int number) {
  const auto* found = std::ranges::find(table, number, &Fault::number);
  return found == std::end(table) ? nullptr : found;
}

}  // namespace devservice
