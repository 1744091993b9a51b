#pragma once

#include "tools/devservice/HTTPRequest.h"

namespace devservice {

/// Returns true if a program or a browser on this machine sent the request for the developer, and not for
/// another site that is open in the browser. The rules:
/// - The peer's address is this machine's.
/// - "Host" is localhost, 127.0.0.1 or [::1], not a foreign name that resolves to this machine.
/// - "Origin", if there is one, is the service itself.
/// - Without an origin, "Sec-Fetch-Site" does not name another site, or the browser follows a link to the
///   page itself, not in a frame. The site with the link cannot read the page. Links to anything else are not
///   followed, since the site could see by the window whether there was a reply.
bool isLocalCaller(const HTTPRequest& request);

}  // namespace devservice
