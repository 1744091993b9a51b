#pragma once

#include "tools/devservice/HTTPRequest.h"

namespace devservice {

/// Returns true if a program or a browser on this machine sent the request for the developer, and not for
/// another site that is open in the browser. The rules:
/// - The peer's address is this machine's.
/// - "Host" is localhost, 127.0.0.1 or [::1], not a foreign name that resolves to this machine.
/// - The rules of isFromOwnOrigin() hold.
bool isLocalCaller(const HTTPRequest& request);

}  // namespace devservice
