#pragma once

#include <condition_variable>
#include <mutex>

/// An attribute for clang's analysis of locks, such as `guarded_by(mutex_)`. Empty for other compilers.
#ifdef __clang__
#define ORVANE_LOCKING(...) __attribute__((__VA_ARGS__))
#else
#define ORVANE_LOCKING(...)
#endif

namespace orvane {

/// A std::mutex that clang's analysis of locks knows.
class ORVANE_LOCKING(capability("mutex")) Mutex {
 public:
  void lock() ORVANE_LOCKING(acquire_capability()) { mutex_.lock(); }
  void unlock() ORVANE_LOCKING(release_capability()) { mutex_.unlock(); }

  /// Waits for a notification of `changed`. The mutex is held before and after.
  void wait(std::condition_variable& changed) ORVANE_LOCKING(requires_capability(this)) {
    std::unique_lock lock(mutex_, std::adopt_lock);
    changed.wait(lock);
    static_cast<void>(lock.release());
  }

 private:
  std::mutex mutex_;
};

/// Holds a Mutex while it lives.
class ORVANE_LOCKING(scoped_lockable) MutexLock {
 public:
  explicit MutexLock(Mutex& mutex) ORVANE_LOCKING(acquire_capability(mutex)) : mutex_(mutex) { mutex.lock(); }
  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;
  ~MutexLock() ORVANE_LOCKING(release_capability()) { mutex_.unlock(); }

 private:
  Mutex& mutex_;
};

}  // namespace orvane
