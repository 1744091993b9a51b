#pragma once

#include "tools/devservice/HTTPRequest.h"

namespace devservice {

/// Returns true unless a browser sent the request for another site. The rules:
/// - "Origin", if there is one, is the service itself, as "Host" names it.
/// - Without an origin, "Sec-Fetch-Site" does not name another site, or the browser follows a link to the
///   page itself, not in a frame. The site with the link cannot read the page. Links to anything else are not
///   followed, since the site could see by the window whether there was a reply.
bool isFromOwnOrigin(const HTTPRequest& request);

}  // namespace devservice
