#include "orvane/network/decodeReply.h"

#include "orvane/json/readJSON.h"
#include "orvane/network/networkToolError.h"

namespace orvane {

DecodedReply decodeReply(const DataTaskResult& reply) {
  if (reply.error) return {.error = reply.error};
  if (!reply.body) return {};
  DecodedReply decoded{.result = readJSON(*reply.body)};
  if (!decoded.result) decoded.error = networkToolError(replyNotDecoded);
  return decoded;
}

}  // namespace orvane
