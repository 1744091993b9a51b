#include "tools/devservice/makeReply.h"

#include "tools/devservice/ReplyDraft.h"
#include "tools/support/Json.h"

namespace devservice {

HTTPReply makeReply(const ReplyBody& body, const RequestedFault& requested) {
  ReplyDraft draft{{{"code", static_cast<int>(body.code)}, {"msg", body.msg}, {"data", nullptr}}};
  if (body.data) draft.object["data"] = *body.data;
  if (requested.fault && requested.fault->corrupt) requested.fault->corrupt(draft);
  return {.status = draft.status,
          .body = draft.body ? *draft.body : support::dumped(draft.object),
          .fault = draft.transport,
          .delay = requested.delay};
}

HTTPReply makeRefusal(int status, Code reason, std::string_view detail) {
  HTTPReply reply = makeReply(ReplyBody::refusal(reason, detail));
  reply.status = status;
  return reply;
}

HTTPReply refuseMethod(std::string_view allowed) {
  HTTPReply reply = makeRefusal(405, Code::wrongMethod);
  reply.headers.emplace_back("Allow", allowed);
  return reply;
}

}  // namespace devservice
