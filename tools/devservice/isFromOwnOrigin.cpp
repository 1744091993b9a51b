#include "tools/devservice/isFromOwnOrigin.h"

#include <boost/beast/core/string.hpp>
#include <string>

namespace devservice {

bool isFromOwnOrigin(const HTTPRequest& request) {
  if (const auto origin = request.header("Origin"))
    return boost::beast::iequals(*origin, "http://" + std::string(request.header("Host").value_or("")));
  const std::string_view site = request.header("Sec-Fetch-Site").value_or("none");
  if (site == "none" || site == "same-origin") return true;
  return request.method == "GET" && request.path == "/" && request.header("Sec-Fetch-Mode") == "navigate" &&
         request.header("Sec-Fetch-Dest") == "document";
}

}  // namespace devservice
