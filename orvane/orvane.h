#pragma once

/// Sign-in by mobile phone number. OrvaneManager makes the three calls, NetworkTool sends their requests,
/// OVDeviceInfoTool reads what is reported about the device, and Platform holds what an application may
/// replace.

#include "orvane/base/Error.h"
#include "orvane/base/Value.h"
#include "orvane/client/ErrorKind.h"
#include "orvane/client/OrvaneManager.h"
#include "orvane/device/OVDeviceInfoTool.h"
#include "orvane/network/NetworkTool.h"
#include "orvane/network/ReaddressedSession.h"
#include "orvane/network/serviceBaseURL.h"
#include "orvane/platform/Platform.h"
#include "orvane/platform/onMainQueue.h"
#include "orvane/version/Orvane_vers.h"

/// Everything in the library except its two version records.
namespace orvane {}
