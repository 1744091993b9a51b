#include "orvane/network/decodeReply.h"

#include "orvane/json/readJSON.h"
#include "orvane/network/transportErrors.h"

namespace orvane {

DecodedReply decodeReply(const DataTaskResult& reply) {
  if (reply.error) return {.error = reply.error};
  if (!reply.body) return {};
  DecodedReply decoded{.result = readJSON(*reply.body)};
  if (!decoded.result) decoded.error = transportError(replyNotDecoded);
  return decoded;
}

}  // namespace orvane
