#include "tools/devservice/ReplyBody.h"

#include <algorithm>
#include <utility>

namespace devservice {

ReplyBody ReplyBody::refusal(Code reason, std::string_view detail) {
  const auto entry = std::ranges::find(codeTable(), reason, &CodeDescription::code);
  std::string msg(entry->text);
  if (!detail.empty()) msg.append(": ").append(detail);
  return {reason, std::move(msg), std::nullopt};
}

}  // namespace devservice
