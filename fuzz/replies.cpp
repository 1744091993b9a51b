// A call that gets a reply has one outcome, the one in the reply, or stops. The line of a stop contains
// nothing of the reply. The input's first byte chooses the call, the rest is the reply's body.

#include <array>
#include <nlohmann/json.hpp>

#include "adapters/host/HostTextRules.h"
#include "fuzz/fuzz.h"
#include "orvane/client/GuardedSession.h"
#include "orvane/client/OrvaneManager.h"
#include "orvane/client/ServiceCall.h"
#include "orvane/client/serviceBaseURL.h"
#include "orvane/host/HostDeviceReadings.h"
#include "orvane/platform/Platform.h"

namespace orvane {
namespace {

struct HoldingSession final : URLSession {
  void startDataTask(URLRequest, DataTaskHandler handler) override { handlers.push_back(std::move(handler)); }
  void cancelAllOperations() override {}

  std::vector<DataTaskHandler> handlers;
};

struct ImmediateQueue final : DispatchQueue {
  void async(Task task) override { task(); }
};

const std::shared_ptr<HoldingSession>& sharedSession() {
  static const auto* const session = [] {
    auto* made = new std::shared_ptr<HoldingSession>(std::make_shared<HoldingSession>());
    installPlatform({.sharedSession = *made,
                     .mainQueue = std::make_shared<ImmediateQueue>(),
                     .textRules = std::make_shared<HostTextRules>(),
                     .deviceReadings = std::make_shared<HostDeviceReadings>()});
    return made;
  }();
  return *session;
}

bool isKnown(std::string stop) {
  constexpr std::string_view known =
      "|there is no reply|the reply is not a map"
      "|the reply has no \"code\"|the reply's \"code\" is not a number"
      "|the reply has no \"msg\"|the reply's \"msg\" is not a text"
      "|the reply has no \"data\"|the reply's \"data\" is not an array"
      "|an element of the reply's \"data\" is not a byte|";
  stop.replace(0, stop.find(": ") + 2, "|");
  return known.find(stop + "|") != known.npos;
}

enum class Call { picture, code, login };

void judge(Call call, const std::string& body) {
  const nlohmann::json reply = readByOther(body);
  HoldingSession& session = *sharedSession();
  session.handlers.clear();
  int outcomes = 0;
  const auto check = [&](const ErrorPtr& error) {
    ++outcomes;
    const bool isUndecoded = error && error->domain == "com.brovent.error";
    if (reply.is_discarded()) return require(isUndecoded, "a text that is not JSON is the transport's error");
    const nlohmann::json& number = reply.at("code");
    const std::int64_t code = number.is_number_integer() ? number.get<std::int64_t>()
                                                         : Value(number.get<double>()).asInteger().value();
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
      require(message == reply.at("msg"), "the message is the reply's");
      require(session.handlers.size() == (error ? 1U : 2U), "the facts have left when a login is accepted");
      check(error);
    });
  }

  bool isStopped = false;
  try {
    const DataTaskHandler handler = std::move(session.handlers.front());
    handler({Bytes(body.begin(), body.end()), HTTPResponse{200}, nullptr});
  } catch (const Stop& stop) {
    isStopped = true;
    require(isKnown(stop.what), "a stop says one of a few things");
  }
  require(outcomes == (isStopped ? 0 : 1), "there is one outcome, or the stop");

  session.handlers.clear();
  constexpr std::array paths = {pictureCodeCall.path, codeCall.path, loginCall.path};
  GuardedSession guarded(sharedSession(), "failed");
  bool hasPassed = false;
  guarded.startDataTask(
      URLRequest(std::string(serviceBaseURL()).append(paths[static_cast<std::size_t>(call)])),
      [&](const DataTaskResult& result) {
        hasPassed =
            result.body && Bytes(result.body->begin(), result.body->end()) == Bytes(body.begin(), body.end());
      });
  session.handlers.front()({Bytes(body.begin(), body.end()), HTTPResponse{200}, nullptr});
  require(hasPassed != isStopped, "a guard replaces what would stop the process, and nothing else");
}

}  // namespace
}  // namespace orvane

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  orvane::judge(static_cast<orvane::Call>(data[0] % 3), std::string(data + 1, data + size));
  return 0;
}
