#include "orvane/client/Envelope.h"

#include "orvane/client/ServiceAddress.h"

namespace orvane {

Headers serviceHeaders(const std::optional<std::string>& clientId) {
  Headers headers = {
      {"Content-Type", "application/json"}, {"XRAPI-VERSION", "1.0"}, {"XRAPI-DEVICE-TYPE", "1"}};
  if (clientId) headers.emplace("XRAPI-CLIENT-ID", *clientId);
  return headers;
}

void send(NetworkManager& transport, const ServiceCall& call, Map body, NetworkTool::Completion completion) {
  transport.requestJSON(HTTPMethod::JSON_POST, std::string(serviceBaseURL()).append(call.path),
                        std::move(body), std::move(completion));
}

}  // namespace orvane
