#pragma once

#include <string>
#include <string_view>

#include "tools/signin/Secrets.h"

namespace signin {

/// A body without the secrets in it: in JSON the members that hold one have the mask as value, whatever they
/// hold, and all else has the known secrets masked. Of a long array of numbers remains how many they are, of
/// deep nesting its outer levels.
std::string maskedBody(std::string_view body, const Secrets& secrets);

}  // namespace signin
