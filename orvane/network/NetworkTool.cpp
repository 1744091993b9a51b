#include "orvane/network/NetworkTool.h"

#include "orvane/base/Snapshot.h"
#include "orvane/base/fatal.h"
#include "orvane/json/readJSON.h"
#include "orvane/json/writeJSON.h"
#include "orvane/network/networkToolError.h"
#include "orvane/network/percentEncode.h"
#include "orvane/platform/Platform.h"

namespace orvane {
namespace {

URLRequest makeRequest(std::string url) {
  if (!platform().textRules->isURL(url)) fatal("request: the text given as URL is not a URL");
  return URLRequest(std::move(url));
}

URLRequest makeJSONPost(std::string_view url, const std::optional<Parameters>& parameters) {
  URLRequest request = makeRequest(std::string(url));
  request.setMethod("POST");
  if (!parameters || parameters->empty()) return request;
  std::optional<Bytes> body = writeJSON(*parameters);
  if (!body) fatal("request: the parameters cannot be represented in JSON");
  request.setBody(*std::move(body));
  return request;
}

/// Decodes a reply on the session queue, so that the main queue runs the completion and nothing else.
void deliver(const DataTaskResult& reply, NetworkTool::Completion completion) {
  if (reply.error) return completion(std::nullopt, reply.error);
  if (!reply.body) fatal("requestJSON: the session reported neither a body nor an error");
  std::optional<Value> result = readJSON(*reply.body);
  if (!result) return completion(std::nullopt, networkToolError(replyNotDecoded));
  platform().mainQueue->async([completion = std::move(completion), result = std::move(result)]() mutable {
    completion(std::move(result), nullptr);
  });
}

}  // namespace

struct NetworkTool::State {
  Snapshot<std::shared_ptr<const Headers>> headers;
  Snapshot<std::shared_ptr<URLSession>> session;
};

NetworkTool::NetworkTool() : state_(std::make_unique<State>()) {}
NetworkTool::~NetworkTool() = default;

void NetworkTool::demoGCDGroup() {
  platform().globalQueue->asyncGroup([] {}, platform().mainQueue, [] {});
}

void NetworkTool::addHeader(Headers headers) {
  if (headers.empty()) return;
  state_->headers.store(std::make_shared<const Headers>(std::move(headers)));
}

void NetworkTool::requestJSON(HTTPMethod method, std::string_view url,
                              const std::optional<Parameters>& parameters, Completion completion) {
  if (!completion) completion = [](const auto&...) {};
  std::optional<URLRequest> request = this->request(method, url, parameters);
  if (!request) {
    completion(std::nullopt, networkToolError(requestNotBuilt));
    return;
  }
  const std::shared_ptr<URLSession> session = this->session();
  if (!session) fatal("requestJSON: the tool has no session");
  session->startDataTask(*std::move(request),
                         [completion = std::move(completion)](const DataTaskResult& reply) mutable {
                           deliver(reply, std::move(completion));
                         });
}

std::optional<URLRequest> NetworkTool::request(HTTPMethod method, std::string_view url,
                                               const std::optional<Parameters>& parameters) {
  if (url.empty()) return std::nullopt;
  std::optional<URLRequest> request;
  switch (method) {
    case HTTPMethod::JSON_POST:
      request = makeJSONPost(url, parameters);
      break;
    case HTTPMethod::POST:
      if (const std::optional<std::string> query = queryString(parameters)) {
        request = makeRequest(std::string(url));
        request->setMethod("POST");
        request->setBody(Bytes(query->begin(), query->end()));
      }
      break;
    case HTTPMethod::GET: {
      std::string whole(url);
      // Appended even to a URL that has a query already: a caller puts all of a query in one place.
      if (const std::optional<std::string> query = queryString(parameters)) whole.append("?").append(*query);
      request = makeRequest(std::move(whole));
      break;
    }
  }

  const std::optional<std::shared_ptr<const Headers>> headers = state_->headers.load();
  if (!headers) return request;
  if (!request) fatal("request: a POST without parameters has no request to put the headers into");
  for (const auto& [name, value] : **headers) request->addValue(value, name);
  return request;
}

std::optional<std::string> NetworkTool::queryString(const std::optional<Parameters>& parameters) {
  if (!parameters) return std::nullopt;
  std::string query;
  for (const auto& [key, value] : *parameters) {
    const std::string* string = value.string();
    if (!string) fatal("queryString: a parameter's value is not a string");
    const std::optional<std::string> encoded = percentEncode(*string, *platform().textRules);
    if (!encoded) fatal("queryString: a parameter's value is not UTF-8");
    if (!query.empty()) query.push_back('&');
    query.append(key).append("=").append(*encoded);
  }
  return query;
}

void NetworkTool::cancleAllNetwork() {
  if (const std::shared_ptr<URLSession> session = this->session()) session->cancelAllOperations();
}

std::shared_ptr<URLSession> NetworkTool::session() {
  if (std::optional<std::shared_ptr<URLSession>> session = state_->session.load()) return *std::move(session);
  state_->session.storeIfEmpty(platform().sharedSession);
  return *state_->session.load();
}

void NetworkTool::setSession(std::shared_ptr<URLSession> session) {
  state_->session.store(std::move(session));
}

}  // namespace orvane
