#pragma once

#include "orvane/client/OrvaneManager.h"
#include "orvane/network/NetWorkManager.h"

namespace orvane {

// What becomes of the transport's completion of each service call: `finished` is called once, here, or the
// process stops.

void finishPictureCode(std::optional<Value> result, ErrorPtr error,
                       const OrvaneManager::PictureCodeFinished& finished);
void finishCode(std::optional<Value> result, ErrorPtr error, const OrvaneManager::CodeFinished& finished);

/// An accepted login sends the device's facts by `transport` before it is reported.
void finishLogin(std::optional<Value> result, ErrorPtr error, NetworkManager& transport,
                 const std::string& mobile, const OrvaneManager::LoginFinished& finished);

}  // namespace orvane
