#pragma once

#include "tools/devservice/HTTPRequest.h"

namespace devservice {

/// Returns true if a developer on this machine sent the request, and not a site that is open in the developer's
/// browser: the peer and the host asked for are this machine, and the origin, if there is one, is the service
/// itself. A site whose name leads here by a trick of its name server gives itself away by the host. What a
/// browser sends for another site without an origin it sends with "Sec-Fetch-Site"; only following a link from
/// there is harmless.
bool isLocalCaller(const HTTPRequest& request);

}  // namespace devservice
