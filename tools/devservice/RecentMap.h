#pragma once

#include <cstddef>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace devservice {

/// A map from strings with a limited capacity. If it is full, a new entry replaces the one whose last touch()
/// is longest ago. Not thread-safe.
template <typename Value>
class RecentMap {
 public:
  using Entry = std::pair<const std::string, Value>;

  explicit RecentMap(std::size_t capacity) : capacity_(capacity) {}

  /// Makes the key the most recent one and returns its value, which is added if there is none. The reference
  /// is valid until the entry is replaced or cleared.
  Value& touch(std::string_view key) {
    if (const auto found = index_.find(key); found != index_.end()) {
      entries_.splice(entries_.begin(), entries_, found->second);
      return found->second->second;
    }
    if (entries_.size() == capacity_) {
      index_.erase(entries_.back().first);
      entries_.pop_back();
    }
    entries_.emplace_front(key, Value{});
    index_.emplace(entries_.front().first, entries_.begin());
    return entries_.front().second;
  }

  /// Returns the value of the key, or null. Does not make the key the most recent one.
  const Value* find(std::string_view key) const {
    const auto found = index_.find(key);
    return found == index_.end() ? nullptr : &found->second->second;
  }

  void clear() {
    index_.clear();
    entries_.clear();
  }

  /// Returns all entries, the most recent one first.
  const std::list<Entry>& entries() const { return entries_; }

 private:
  std::size_t capacity_;
  std::list<Entry> entries_;
  std::unordered_map<std::string_view, typename std::list<Entry>::iterator> index_;
};

}  // namespace devservice
