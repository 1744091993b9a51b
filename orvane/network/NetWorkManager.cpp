#include "orvane/network/NetWorkManager.h"

namespace orvane {

NetworkManager& NetworkManager::sharedManager() {
  static auto* const instance = new NetworkManager;
  return *instance;
}

NetworkManager::NetworkManager() = default;
NetworkManager::~NetworkManager() = default;

void NetworkManager::requestJSON(HTTPMethod method, std::string_view url,
                                 const std::optional<Parameters>& parameters,
                                 NetworkTool::Completion completion) {
  net_.requestJSON(method, url, parameters, std::move(completion));
}

void NetworkManager::addHeaders(Headers headers) {
  net_.addHeader(std::move(headers));
}

void NetworkManager::cancleAllNetwork() {
  net_.cancleAllNetwork();
}

}  // namespace orvane
