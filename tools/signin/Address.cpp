#include "tools/signin/Address.h"

namespace signin {

std::string Address::authority() const {
  return (host.find(':') == host.npos ? host : "[" + host + "]") + ":" + std::to_string(port);
}

}  // namespace signin
