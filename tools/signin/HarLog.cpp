#include "tools/signin/HarLog.h"

#include <cerrno>
#include <fstream>
#include <system_error>
#include <utility>

#include "tools/signin/Options.h"
#include "tools/signin/Terminal.h"

namespace signin {

HarLog::HarLog(std::string path, std::shared_ptr<const support::Secrets> secrets)
    : path_(std::move(path)), secrets_(std::move(secrets)) {
  if (!write())
    throw UsageError("--har: cannot write " + path_ + ": " + std::system_category().message(errno));
}

void HarLog::add(support::Exchange exchange) {
  const std::lock_guard lock(mutex_);
  exchanges_.push_back(std::move(exchange));
  if (!write()) Terminal::complain("--har: cannot write " + path_);
}

bool HarLog::write() const {
  std::vector<std::string> entries;
  for (const support::Exchange& exchange : exchanges_) entries.push_back(harEntry(exchange, *secrets_));
  std::ofstream file(path_, std::ios::binary);
  file << support::harFile("orvane-signin", entries);
  return static_cast<bool>(file.flush());
}

}  // namespace signin
