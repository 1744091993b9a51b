#include "tools/devservice/LineWriter.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <poll.h>
#include <string_view>
#include <thread>
#include <unistd.h>
#include <utility>

#include "tools/devservice/Limits.h"

namespace devservice {
namespace {

/// Returns false if the text cannot be written. Blocks until it can be read.
bool writeAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = ::write(descriptor, text.data(), text.size());
    if (count > 0) {
      text.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno == EAGAIN) {  // The descriptor is shared with a program that does not block on it.
      pollfd writable{descriptor, POLLOUT, 0};
      poll(&writable, 1, -1);
    } else if (errno != EINTR) {
      return false;
    }
  }
  return true;
}

}  // namespace

class LineWriter::Lines {
 public:
  explicit Lines(int descriptor) : descriptor_(descriptor) {}

  void add(std::string line) {
    const std::lock_guard lock(mutex_);
    if (lines_.size() == maxWaitingLines) {
      ++dropped_;
    } else {
      lines_.push_back(std::move(line += '\n'));
    }
    changed_.notify_all();
  }

  void run(const std::string& first, void (*failed)()) {
    if (!writeAll(descriptor_, first + '\n')) {
      hasFailed_ = true;
      failed();
    }
    std::unique_lock lock(mutex_);
    for (;;) {
      isWriting_ = false;
      changed_.notify_all();
      changed_.wait(lock, [this] { return !lines_.empty() || dropped_ > 0 || ends_; });
      if (lines_.empty() && dropped_ == 0) return;
      isWriting_ = true;
      std::string text;
      for (const std::string& line : std::exchange(lines_, {})) text += line;
      const std::size_t dropped = std::exchange(dropped_, 0);
      if (dropped > 0) text += "(" + std::to_string(dropped) + " lines were dropped: nothing read them)\n";
      lock.unlock();
      writeAll(descriptor_, text);
      lock.lock();
    }
  }

  bool hasFailed() const { return hasFailed_; }

  void end() {
    std::unique_lock lock(mutex_);
    ends_ = true;
    changed_.notify_all();
    changed_.wait_for(lock, std::chrono::milliseconds(100), [this] { return lines_.empty() && !isWriting_; });
  }

 private:
  const int descriptor_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::string> lines_;
  std::size_t dropped_ = 0;  // Since the last of lines_ was added.
  bool isWriting_ = true;    // From the start, so that end() waits for the first line.
  bool ends_ = false;
  std::atomic<bool> hasFailed_ = false;
};

LineWriter::LineWriter(int descriptor) : lines_(std::make_shared<Lines>(descriptor)) {}

LineWriter::~LineWriter() {
  lines_->end();
}

void LineWriter::start(std::string first, void (*failed)()) {
  std::thread([lines = lines_, first = std::move(first), failed] { lines->run(first, failed); }).detach();
}

bool LineWriter::hasFailed() const {
  return lines_->hasFailed();
}

void LineWriter::write(std::string line) {
  lines_->add(std::move(line));
}

}  // namespace devservice
