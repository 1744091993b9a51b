#include "orvane/client/GuardedSession.h"

#include <utility>

#include "orvane/base/fatal.h"
#include "orvane/client/JudgedReply.h"
#include "orvane/client/ServiceCall.h"
#include "orvane/client/serviceBaseURL.h"
#include "orvane/json/writeJSON.h"
#include "orvane/network/decodeReply.h"

namespace orvane {
namespace {

using Judge = JudgedReply (*)(std::optional<Value> result, ErrorPtr error);

/// Returns the judge of the call with the address `url`, or null if none of the three calls has it.
Judge judgeOf(std::string_view url) {
  if (!url.starts_with(serviceBaseURL())) return nullptr;
  url.remove_prefix(serviceBaseURL().size());
  if (url == pictureCodeCall.path) return judgePictureCode;
  if (url == codeCall.path) return judgeCode;
  return url == loginCall.path ? judgeLogin : nullptr;
}

}  // namespace

GuardedSession::GuardedSession(std::shared_ptr<URLSession> session, std::string failureMessage)
    : session_(std::move(session)) {
  if (!session_) fatal("GuardedSession: there is no session");
  std::optional<Bytes> refusal = writeJSON(Map{{"code", -1}, {"msg", std::move(failureMessage)}});
  if (!refusal) fatal("GuardedSession: the failure message is not UTF-8");
  refusal_ = *std::move(refusal);
}

void GuardedSession::startDataTask(URLRequest request, DataTaskHandler handler) {
  if (const Judge judge = judgeOf(request.url())) {
    handler = [judge, refusal = refusal_, handler = std::move(handler)](DataTaskResult reply) {
      DecodedReply decoded = decodeReply(reply);
      const JudgedReply judged = judge(std::move(decoded.result), std::move(decoded.error));
      if (!judged.flaw.empty()) reply = {.body = refusal, .response = HTTPResponse{200}, .error = nullptr};
      if (handler) handler(std::move(reply));
    };
  }
  session_->startDataTask(std::move(request), std::move(handler));
}

void GuardedSession::cancelAllOperations() {
  session_->cancelAllOperations();
}

}  // namespace orvane
