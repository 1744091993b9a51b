#include "orvane/base/fatal.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace orvane {

void fatal(std::string_view what) {
  std::string line("orvane: ");
  line.append(what).push_back('\n');
  std::fwrite(line.data(), 1, line.size(), stderr);
  std::abort();
}

}  // namespace orvane
