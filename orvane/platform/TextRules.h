#pragma once

#include <string_view>

#include "orvane/base/Export.h"

namespace orvane {

/// Answers the library's questions about URLs and characters. May be used from any thread.
class ORVANE_API TextRules {
 public:
  TextRules() = default;
  TextRules(const TextRules&) = delete;
  TextRules& operator=(const TextRules&) = delete;
  virtual ~TextRules();

  /// Returns true if `text` parses as a URL, absolute or relative.
  virtual bool isURL(std::string_view text) const = 0;

  /// Returns true if `codePoint` belongs to one of Unicode's categories letter, mark and number.
  virtual bool isAlphanumeric(char32_t codePoint) const = 0;
};

}  // namespace orvane
