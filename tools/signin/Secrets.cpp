#include "tools/signin/Secrets.h"

#include <algorithm>
#include <functional>

#include "orvane/orvane.h"

namespace signin {

void Secrets::add(std::string_view secret) {
  // Others may quote a mobile number without its plus sign, or with an encoded one.
  if (secret.starts_with('+')) secret.remove_prefix(1);
  if (secret.size() < 2) return;
  const std::lock_guard lock(mutex_);
  secrets_.emplace_back(secret);
  std::ranges::sort(secrets_, std::greater(), &std::string::size);
}

std::string Secrets::masked(std::string_view text) const {
  std::string result;
  const std::lock_guard lock(mutex_);
  while (!text.empty()) {
    const auto found = std::ranges::find_if(secrets_, [text](const std::string& secret) {
      return orvane::equalIgnoringCase(text.substr(0, secret.size()), secret);
    });
    if (found == secrets_.end()) {
      result.push_back(text.front());
      text.remove_prefix(1);
    } else {
      result.append(mask);
      text.remove_prefix(found->size());
    }
  }
  return result;
}

}  // namespace signin
