#pragma once

/// Phone sign-in: see OrvaneManager for the three calls, NetworkTool for the transport they use,
/// OVDeviceInfoTool for what they report about the device, Platform for what an application may replace.

#include "orvane/base/Error.h"
#include "orvane/base/Value.h"
#include "orvane/client/ErrorKind.h"
#include "orvane/client/OrvaneManager.h"
#include "orvane/client/ServiceAddress.h"
#include "orvane/device/OVDeviceInfoTool.h"
#include "orvane/network/NetworkTool.h"
#include "orvane/platform/Platform.h"
#include "orvane/platform/onMainQueue.h"
#include "orvane/version/Orvane_vers.h"

/// All of the library but its two version records.
namespace orvane {}
