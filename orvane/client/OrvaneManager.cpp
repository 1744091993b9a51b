#include "orvane/client/OrvaneManager.h"

#include <cstdio>
#include <utility>

#include "orvane/base/fatal.h"
#include "orvane/client/JudgedReply.h"
#include "orvane/client/ServiceCall.h"
#include "orvane/client/reportDevice.h"
#include "orvane/client/sharedManagerMaker.h"

namespace orvane {
namespace {

constexpr auto ignore = [](const auto&...) {};

/// Returns a reply that the call could read, and stops the process for any other.
JudgedReply flawless(const ServiceCall& call, JudgedReply reply) {
  if (!reply.flaw.empty()) fatal(std::string(call.name).append(": ").append(reply.flaw));
  return reply;
}

void trace(const ServiceCall& call, const Error& error) {
  const std::string line = "orvane: " + std::string(call.name) + ": " + description(error) + "\n";
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fflush(stdout);
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
       [finished = std::move(finished)](std::optional<Value> result, ErrorPtr error) {
         if (error) trace(pictureCodeCall, *error);
         JudgedReply reply = flawless(pictureCodeCall, judgePictureCode(std::move(result), std::move(error)));
         finished(std::move(reply.picture), std::move(reply.error));
       });
}

void OrvaneManager::requestCode(std::string mobile, std::string codeNumber, CodeFinished finished) {
  if (!finished) finished = ignore;
  send(codeCall, clientId(), {{"mobile", std::move(mobile)}, {"captcha", std::move(codeNumber)}},
       [finished = std::move(finished)](std::optional<Value> result, ErrorPtr error) {
         finished(flawless(codeCall, judgeCode(std::move(result), std::move(error))).error);
       });
}

void OrvaneManager::requestLogin(std::string mobile, std::string code, LoginFinished finished) {
  if (!finished) finished = ignore;
  Map body = {{"mobile", mobile}, {"verificationCode", std::move(code)}};
  send(loginCall, clientId(), std::move(body),
       [finished = std::move(finished), mobile = std::move(mobile)](std::optional<Value> result,
                                                                    ErrorPtr error) {
         JudgedReply reply = flawless(loginCall, judgeLogin(std::move(result), std::move(error)));
         if (!reply.error) reportDevice(mobile);
         finished(std::move(reply.message), std::move(reply.error));
       });
}

}  // namespace orvane
