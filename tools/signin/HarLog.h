#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "tools/support/HarFile.h"

namespace signin {

/// Keeps a HAR file of the requests. Its functions may be called from any thread.
class HarLog {
 public:
  /// Writes a file without entries. Throws UsageError if it cannot be written.
  HarLog(std::string path, std::shared_ptr<const support::Secrets> secrets);

  /// Adds the exchange, and writes the file anew, since the library may stop the process at any reply. Masks
  /// earlier exchanges again, with secrets that were not known then. Complains if it cannot write.
  void add(support::Exchange exchange);

 private:
  bool write() const;

  const std::string path_;
  const std::shared_ptr<const support::Secrets> secrets_;
  std::mutex mutex_;
  std::vector<support::Exchange> exchanges_;
};

}  // namespace signin
