#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "orvane/host/HostSession.h"
#include "orvane/orvane.h"
#include "tools/signin/Secrets.h"

namespace signin {

/// Returns the local time as a shell's comment.
std::string timeText();

/// Returns the text as one word of a shell command, on one line.
std::string shellWord(std::string_view text);

/// Returns the request as a curl command that could be pasted, on one line; it takes the way that a session with the
/// configuration takes.
std::string requestLine(const orvane::URLRequest& request,
                        const orvane::HostSessionConfiguration& configuration, const Secrets& secrets);

/// Returns what came of the request to `url` and how long that took, on one line; a long body is cut.
std::string replyLine(std::string_view url, const orvane::DataTaskResult& result,
                      std::chrono::milliseconds took, const Secrets& secrets);

}  // namespace signin
