#pragma once

#include <string_view>

#include "tools/devservice/Code.h"
#include "tools/devservice/HTTPReply.h"
#include "tools/devservice/ReplyBody.h"
#include "tools/devservice/RequestedFault.h"

namespace devservice {

/// Returns a reply with that body and the HTTP status 200, spoiled by the fault that is demanded.
HTTPReply makeReply(const ReplyBody& body, const RequestedFault& requested = {});

/// Returns the refusal for that reason as a reply with that HTTP status.
HTTPReply makeRefusal(int status, Code reason, std::string_view detail = {});

/// Returns the refusal of a method, with the methods that are allowed instead, such as "GET, HEAD".
HTTPReply refuseMethod(std::string_view allowed);

}  // namespace devservice
