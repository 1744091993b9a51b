#include "orvane/client/reportDevice.h"

#include <utility>

#include "orvane/client/ServiceCall.h"
#include "orvane/device/OVDeviceInfoTool.h"

namespace orvane {

void reportDevice(const std::string& mobile) {
  Map body;
  body["mobile"] = mobile;
  // Not the model: the service expects the system's version under this name.
  body["deviceModel"] = OVDeviceInfoTool::getSystemVersion();
  body["carrier"] = OVDeviceInfoTool::getcarrierName();
  body["deviceName"] = rawValue(OVDeviceInfoTool::getDeviceName());
  // The device's real identifiers never leave it.
  body["IMEI"] = " ";
  body["IMSI"] = " ";
  try {
    sendWithStoredHeaders(deviceReportCall, std::move(body), nullptr);
  } catch (...) {
    // The session threw because it has no thread. The login succeeded, and the report's outcome is ignored.
  }
}

}  // namespace orvane
