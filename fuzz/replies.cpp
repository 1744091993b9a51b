// A call that gets a reply has one outcome: the one in the reply or, if the call cannot read it, a failure in
// the application's words. The input's first byte chooses the call, the rest is the reply's body.

#include <nlohmann/json.hpp>

#include "adapters/host/HostTextRules.h"
#include "fuzz/fuzz.h"
#include "orvane/client/OrvaneManager.h"
#include "orvane/host/HostDeviceReadings.h"
#include "orvane/network/NetworkTool.h"
#include "orvane/platform/Platform.h"

namespace orvane {
namespace {

struct HoldingSession final : URLSession {
  void startDataTask(URLRequest, DataTaskHandler handler) override { handlers.push_back(std::move(handler)); }
  void cancelAllOperations() override {}

  std::vector<DataTaskHandler> handlers;
};

struct ImmediateQueue final : DispatchQueue {
  void async(Work work) override { work(); }
};

const std::shared_ptr<HoldingSession>& sharedSession() {
  static const auto* const session = [] {
    auto* made = new std::shared_ptr<HoldingSession>(std::make_shared<HoldingSession>());
    installPlatform({.sharedSession = *made,
                     .mainQueue = std::make_shared<ImmediateQueue>(),
                     .textRules = std::make_shared<HostTextRules>(),
                     .deviceReadings = std::make_shared<HostDeviceReadings>(),
                     .failureWords = [](const Error&) { return std::string("words"); }});
    return made;
  }();
  return *session;
}

enum class Call { picture, code, login };

void judge(Call call, const std::string& body) {
  const nlohmann::json reply = readByOther(body);
  HoldingSession& session = *sharedSession();
  session.handlers.clear();
  int outcomes = 0;
  const auto has = [&](const char* key, auto is) {
    return reply.is_object() && reply.contains(key) && (reply.at(key).*is)();
  };
  using Json = nlohmann::json;
  const auto check = [&](const ErrorPtr& error) {
    ++outcomes;
    const bool hasMessage = has("msg", &Json::is_string);
    const bool isJudged = has("code", &Json::is_number) && (hasMessage || call != Call::login);
    if (error && error->cause) {
      require(error->domain == "words" && error->cause->domain == NetworkTool::errorDomain,
              "a failure has the application's words, and a cause");
      require(error->code == (call == Call::login ? 1 : -1), "a failure has its call's code");
      require(!isJudged || call == Call::picture || (call == Call::code && !hasMessage),
              "a reply that can be read is no failure");
      return;
    }
    const bool isUndecoded = error && error->domain == NetworkTool::errorDomain && !error->userInfo.empty();
    require(isUndecoded == reply.is_discarded(), "a text that is not JSON is the transport's error");
    if (isUndecoded) return;
    require(isJudged, "a reply that cannot be read is a failure");
    const Json& number = reply.at("code");
    const std::int64_t code = number.is_number_integer()
                                  ? number.get<std::int64_t>()
                                  : Value(number.get<double>()).numberAsInteger().value();
    require((code == 0) == !error, "another code than 0 is a refusal");
    if (!error) return;
    require(error->domain == reply.at("msg"), "a refusal's domain is the message");
    require(error->code == (call == Call::login ? 1 : code),
            "a refusal's code is the reply's, but for the login");
    require(error->userInfo.empty(), "a refusal has no user information");
  };
  OrvaneManager& manager = OrvaneManager::shareManager();
  if (call == Call::picture) {
    manager.requestPictureCode("", [&](const std::optional<Bytes>& data, const ErrorPtr& error) {
      require(data.has_value() == !error, "there is a picture or an error");
      if (data) require(data->size() == reply.at("data").size(), "there is a byte for each element");
      check(error);
    });
  } else if (call == Call::code) {
    manager.requestCode("", "", check);
  } else {
    manager.requestLogin("", "", [&](const std::optional<std::string>& message, const ErrorPtr& error) {
      const bool isFailure = error && error->cause;
      require(isFailure ? message == "words" : message == reply.at("msg"), "the message is the reply's");
      require(session.handlers.size() == (error ? 1U : 2U), "the facts have left when a login is accepted");
      check(error);
    });
  }

  const DataTaskHandler handler = std::move(session.handlers.front());
  handler({Bytes(body.begin(), body.end()), HTTPResponse{200}, nullptr});
  require(outcomes == 1, "there is one outcome");
}

}  // namespace
}  // namespace orvane

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  orvane::judge(static_cast<orvane::Call>(data[0] % 3), std::string(data + 1, data + size));
  return 0;
}
