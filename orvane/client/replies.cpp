#include "orvane/client/replies.h"

#include <cstdio>

#include "orvane/base/fatal.h"
#include "orvane/client/Envelope.h"
#include "orvane/client/Outcome.h"
#include "orvane/device/OVDeviceInfoTool.h"

namespace orvane {
namespace {

/// Returns the outcome of a call, and stops the process in place of a flawed one.
Outcome flawless(const ServiceCall& call, Outcome outcome) {
  if (!outcome.flaw.empty()) fatal(std::string(call.name).append(": ").append(outcome.flaw));
  return outcome;
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
  }
  Outcome outcome = flawless(pictureCodeCall, judgePictureCode(std::move(result), std::move(error)));
  finished(std::move(outcome.picture), std::move(outcome.error));
}

void finishCode(std::optional<Value> result, ErrorPtr error, const OrvaneManager::CodeFinished& finished) {
  finished(flawless(codeCall, judgeCode(std::move(result), std::move(error))).error);
}

void finishLogin(std::optional<Value> result, ErrorPtr error, NetworkManager& transport,
                 const std::string& mobile, const OrvaneManager::LoginFinished& finished) {
  Outcome outcome = flawless(loginCall, judgeLogin(std::move(result), std::move(error)));
  if (!outcome.error) submitMobileInformation(transport, mobile);
  finished(std::move(outcome.message), std::move(outcome.error));
}

}  // namespace orvane
