#include "orvane/base/Error.h"

namespace orvane {

std::string errorDescription(const Error& error) {
  return error.domain + " (" + std::to_string(error.code) + ")";
}

}  // namespace orvane
