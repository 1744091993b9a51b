#pragma once

#include <string>
#include <string_view>

#include "orvane/host/HostSession.h"
#include "orvane/orvane.h"
#include "tools/signin/Secrets.h"

namespace signin {

/// The text as one word of a shell command, on one line.
std::string shellWord(std::string_view text);

/// The request as a curl command that could be pasted, on one line; it takes the way that a session with the
/// configuration takes.
std::string requestLine(const orvane::URLRequest& request,
                        const orvane::HostSessionConfiguration& configuration, const Secrets& secrets);

/// What came of the request to `url`, on one line that a shell takes for a comment; a long body is cut.
std::string replyLine(std::string_view url, const orvane::DataTaskResult& result, const Secrets& secrets);

}  // namespace signin
