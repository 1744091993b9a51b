#include "orvane/network/serviceBaseURL.h"

namespace orvane {

std::string_view serviceBaseURL() noexcept {
  return ORVANE_BASE_URL;
}

std::string_view serviceHost() noexcept {
  return serviceBaseURL().substr(std::string_view("http://").size());
}

}  // namespace orvane
