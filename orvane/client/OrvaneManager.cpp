#include "orvane/client/OrvaneManager.h"

#include <cstdio>
#include <utility>

#include "orvane/base/fatal.h"
#include "orvane/client/JudgedReply.h"
#include "orvane/client/ServiceCall.h"
#include "orvane/client/sharedManagerMaker.h"
#include "orvane/device/OVDeviceInfoTool.h"
#include "orvane/network/networkToolError.h"
#include "orvane/platform/Platform.h"

namespace orvane {
namespace {

constexpr auto ignore = [](const auto&...) {};

/// Makes the error of a call that cannot read its reply, with the application's words. `cause` is null if the
/// reply was JSON.
ErrorPtr failure(const ServiceCall& call, ErrorPtr cause) {
  if (!cause) cause = networkToolError(replyNotDecoded);
  Error error{platform().failureWords(*cause), call.failureCode, {}};
  error.cause = std::move(cause);
  return std::make_shared<const Error>(std::move(error));
}

/// Hands `reply` to `finish` if the call could read it. Otherwise stops the process or, if the application
/// has words for failures, hands over an error on the main queue.
template <class Finish>
void conclude(const ServiceCall& call, JudgedReply reply, Finish finish) {
  if (reply.flaw.empty()) return finish(std::move(reply));
  if (!platform().failureWords) fatal(std::string(call.name).append(": ").append(reply.flaw));
  const bool isOnMainQueue = !reply.error;  // As every reply that is JSON.
  auto report = [&call, cause = std::move(reply.error), finish = std::move(finish)]() mutable {
    ErrorPtr error = failure(call, std::move(cause));
    finish({.message = error->domain, .error = error});
  };
  if (isOnMainQueue) return report();
  platform().mainQueue->async(std::move(report));
}

void trace(const ServiceCall& call, const Error& error) {
  const std::string line = "orvane: " + std::string(call.name) + ": " + errorDescription(error) + "\n";
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fflush(stdout);
}

/// Reports the system's version, the carrier's name and the device's model to the service, after the login of
/// `mobile`. Reuses the stored header set, which is the login's unless another call was made meanwhile.
/// Ignores the outcome.
void reportDevice(const std::string& mobile) {
  Map body;
  body["mobile"] = mobile;
  // Not the model: the service expects the system's version under this name.
  body["deviceModel"] = OVDeviceInfoTool::getSystemVersion();
  body["carrier"] = OVDeviceInfoTool::getcarrierName();
  body["deviceName"] = rawValue(OVDeviceInfoTool::getDeviceName());
  // The device's real identifiers never leave it.
  body["IMEI"] = " ";
  body["IMSI"] = " ";
  try {
    sendWithStoredHeaders(deviceReportCall, std::move(body), nullptr);
  } catch (...) {
    // The session threw because it has no thread. The login succeeded, and the report's outcome is ignored.
  }
}

}  // namespace

std::unique_ptr<OrvaneManager> (*sharedManagerMaker)() = [] { return std::make_unique<OrvaneManager>(); };

OrvaneManager& OrvaneManager::shareManager() {
  static OrvaneManager* const shareInstance = sharedManagerMaker().release();
  return *shareInstance;
}

OrvaneManager::OrvaneManager() = default;
OrvaneManager::~OrvaneManager() = default;

std::optional<std::string> OrvaneManager::clientId() const {
  return clientId_;
}

void OrvaneManager::setClientId(std::optional<std::string> clientId) {
  clientId_ = std::move(clientId);
}

void OrvaneManager::setAppClientId(std::string clientId) {
  setClientId(std::move(clientId));
}

void OrvaneManager::requestPictureCode(std::string mobile, PictureCodeFinished finished) {
  if (!finished) finished = ignore;
  send(pictureCodeCall, clientId(), {{"mobile", std::move(mobile)}},
       [finished = std::move(finished)](std::optional<Value> result, ErrorPtr error) mutable {
         if (error) trace(pictureCodeCall, *error);
         conclude(pictureCodeCall, judgePictureCode(std::move(result), std::move(error)),
                  [finished = std::move(finished)](JudgedReply reply) {
                    finished(std::move(reply.picture), std::move(reply.error));
                  });
       });
}

void OrvaneManager::requestCode(std::string mobile, std::string codeNumber, CodeFinished finished) {
  if (!finished) finished = ignore;
  send(codeCall, clientId(), {{"mobile", std::move(mobile)}, {"captcha", std::move(codeNumber)}},
       [finished = std::move(finished)](std::optional<Value> result, ErrorPtr error) mutable {
         conclude(codeCall, judgeCode(std::move(result), std::move(error)),
                  [finished = std::move(finished)](JudgedReply reply) { finished(std::move(reply.error)); });
       });
}

void OrvaneManager::requestLogin(std::string mobile, std::string code, LoginFinished finished) {
  if (!finished) finished = ignore;
  Map body = {{"mobile", mobile}, {"verificationCode", std::move(code)}};
  auto finish = [finished = std::move(finished), mobile = std::move(mobile)](JudgedReply reply) {
    if (!reply.error) reportDevice(mobile);
    finished(std::move(reply.message), std::move(reply.error));
  };
  send(loginCall, clientId(), std::move(body),
       [finish = std::move(finish)](std::optional<Value> result, ErrorPtr error) mutable {
         conclude(loginCall, judgeLogin(std::move(result), std::move(error)), std::move(finish));
       });
}

}  // namespace orvane
