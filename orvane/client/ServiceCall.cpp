#include "orvane/client/ServiceCall.h"

#include <utility>

#include "orvane/network/serviceBaseURL.h"

namespace orvane {
namespace {

Headers serviceHeaders(const std::optional<std::string>& clientId) {
  Headers headers = {
      {"Content-Type", "application/json"}, {"XRAPI-VERSION", "1.0"}, {"XRAPI-DEVICE-TYPE", "1"}};
  if (clientId) headers.emplace("XRAPI-CLIENT-ID", *clientId);
  return headers;
}

}  // namespace

void send(const ServiceCall& call, const std::optional<std::string>& clientId, Map body,
          NetworkTool::Completion completion) {
  NetworkManager::sharedManager().addHeaders(serviceHeaders(clientId));
  sendWithStoredHeaders(call, std::move(body), std::move(completion));
}

void sendWithStoredHeaders(const ServiceCall& call, Map body, NetworkTool::Completion completion) {
  NetworkManager::sharedManager().requestJSON(HTTPMethod::JSON_POST,
                                              std::string(serviceBaseURL()).append(call.path),
                                              std::move(body), std::move(completion));
}

}  // namespace orvane
