#include "orvane/client/OrvaneManager.h"

#include "orvane/client/Envelope.h"
#include "orvane/client/replies.h"

namespace orvane {
namespace {

constexpr auto nobody = [](const auto&...) {};

/// The shared transport, with the header set of the call that is about to be made.
NetworkManager& preparedTransport(const OrvaneManager& manager) {
  NetworkManager& transport = NetworkManager::sharedManager();
  transport.addHeaders(serviceHeaders(manager.clientId()));
  return transport;
}

}  // namespace

OrvaneManager& OrvaneManager::shareManager() {
  static auto* const shareInstance = new OrvaneManager;
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
  if (!finished) finished = nobody;
  send(preparedTransport(*this), pictureCodeCall, {{"mobile", std::move(mobile)}},
       [finished = std::move(finished)](std::optional<Value> result, ErrorPtr error) {
         finishPictureCode(std::move(result), std::move(error), finished);
       });
}

void OrvaneManager::requestCode(std::string mobile, std::string codeNumber, CodeFinished finished) {
  if (!finished) finished = nobody;
  send(preparedTransport(*this), codeCall,
       {{"mobile", std::move(mobile)}, {"captcha", std::move(codeNumber)}},
       [finished = std::move(finished)](std::optional<Value> result, ErrorPtr error) {
         finishCode(std::move(result), std::move(error), finished);
       });
}

void OrvaneManager::requestLogin(std::string mobile, std::string code, LoginFinished finished) {
  if (!finished) finished = nobody;
  NetworkManager& transport = preparedTransport(*this);
  Map body = {{"mobile", mobile}, {"verificationCode", std::move(code)}};
  send(transport, loginCall, std::move(body),
       [finished = std::move(finished), mobile = std::move(mobile), &transport](std::optional<Value> result,
                                                                                ErrorPtr error) {
         finishLogin(std::move(result), std::move(error), transport, mobile, finished);
       });
}

}  // namespace orvane
