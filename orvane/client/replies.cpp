#include "orvane/client/replies.h"

#include <cstdio>

#include "orvane/client/Envelope.h"
#include "orvane/client/pictureBytes.h"
#include "orvane/device/OVDeviceInfoTool.h"

namespace orvane {
namespace {

/// The refusal in a reply to the picture or the SMS-code call; null when the call succeeded.
ErrorPtr judge(const Reply& reply) {
  const std::int64_t code = reply.code();
  return code == 0 ? nullptr : refusal(reply.msg(), code);
}

void submitMobileInformation(NetworkManager& transport, const std::string& mobile) {
  Map body;
  body["mobile"] = mobile;
  // The system's version, not the model: intended.
  body["deviceModel"] = OVDeviceInfoTool::getSystemVersion();
  body["carrier"] = OVDeviceInfoTool::getcarrierName();
  body["deviceName"] = rawValue(OVDeviceInfoTool::getDeviceName());
  // The device's real identifiers never leave it.
  body["IMEI"] = " ";
  body["IMSI"] = " ";
  send(transport, submissionCall, std::move(body), nullptr);
}

}  // namespace

void finishPictureCode(std::optional<Value> result, ErrorPtr error,
                       const OrvaneManager::PictureCodeFinished& finished) {
  if (error) {
    const std::string trace = "orvane: requestPictureCode: " + description(*error) + "\n";
    std::fwrite(trace.data(), 1, trace.size(), stdout);
    std::fflush(stdout);
    finished(std::nullopt, std::move(error));
    return;
  }
  Reply reply(pictureCodeCall, std::move(result));
  if (ErrorPtr refused = judge(reply)) {
    finished(std::nullopt, std::move(refused));
    return;
  }
  std::optional<Bytes> picture = pictureBytes(reply.data());
  if (!picture) reply.fail("an element of the reply's \"data\" is not a byte");
  finished(std::move(picture), nullptr);
}

void finishCode(std::optional<Value> result, ErrorPtr error, const OrvaneManager::CodeFinished& finished) {
  finished(error ? std::move(error) : judge(Reply(codeCall, std::move(result))));
}

void finishLogin(std::optional<Value> result, ErrorPtr error, NetworkManager& transport,
                 const std::string& mobile, const OrvaneManager::LoginFinished& finished) {
  // The reply is read before the error is looked at: intended. So a failed transport stops the process.
  const Reply reply(loginCall, std::move(result));
  std::string message = reply.msg();
  if (error) {
    finished("网络错误", std::move(error));
    return;
  }
  if (reply.code() != 0) {
    constexpr std::int64_t refusalCode = 1;  // Whatever the reply's code: intended.
    ErrorPtr refused = refusal(message, refusalCode);
    finished(std::move(message), std::move(refused));
    return;
  }
  submitMobileInformation(transport, mobile);
  finished(std::move(message), nullptr);
}

}  // namespace orvane
