#pragma once

#include <memory>
#include <string>

namespace devservice {

/// Writes lines to a descriptor, on a thread of its own, so that a reader that stops reading delays only the
/// lines. Keeps at most maxWaitingLines of them, drops further ones, and says in their place how many.
class LineWriter {
 public:
  /// Writes nothing before start(), so that no other line can come first.
  explicit LineWriter(int descriptor);

  /// Waits until the lines are written, but not for a reader that does not read: at most 0.1 s.
  ~LineWriter();

  /// Writes `first`, then the lines of write(). Calls `failed` on the writer's thread, perhaps after the
  /// writer was destroyed, if `first` cannot be written.
  void start(std::string first, void (*failed)());

  /// Returns true after `first` could not be written. Thread-safe.
  bool hasFailed() const;

  /// Adds a line without its line end. Never blocks. Thread-safe.
  void write(std::string line);

 private:
  class Lines;
  const std::shared_ptr<Lines> lines_;  // Shared with the thread, which may be inside a write for ever.
};

}  // namespace devservice
