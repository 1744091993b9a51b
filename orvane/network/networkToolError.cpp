#include "orvane/network/networkToolError.h"

#include "orvane/network/NetworkTool.h"

namespace orvane {

ErrorPtr networkToolError(std::string_view message) {
  return std::make_shared<const Error>(
      Error{std::string(NetworkTool::errorDomain), -1, {{"error", message}}});
}

}  // namespace orvane
