#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <utility>

namespace orvane {

/// A value that any number of threads may read and replace at the same time, without a lock. A read returns
/// the value that one of the stores left, never a mixture. Empty until the first store.
///
/// A store sets the replaced value aside. A later store that finds no reader releases what was set aside: a
/// reader that starts afterwards can only find a newer value.
template <class T>
class Snapshot {
 public:
  Snapshot() = default;
  Snapshot(const Snapshot&) = delete;
  Snapshot& operator=(const Snapshot&) = delete;
  ~Snapshot() {
    release(current_.load());
    release(replaced_.load());
  }

  /// Returns a copy of the current value, or nullopt before the first store.
  std::optional<T> load() const {
    readers_.fetch_add(1);
    const Node* node = current_.load();
    std::optional<T> value = node ? std::optional<T>(node->value) : std::nullopt;
    readers_.fetch_sub(1);
    return value;
  }

  /// Replaces the value.
  void store(T value) {
    if (Node* old = current_.exchange(make(std::move(value)))) setAside(old, old);
    Node* replaced = replaced_.exchange(nullptr);
    if (!replaced) return;
    if (readers_.load() == 0) {
      release(replaced);
      return;
    }
    Node* last = replaced;
    while (last->next) last = last->next;
    setAside(replaced, last);
  }

  /// Stores `value` unless a value is stored already.
  void storeIfEmpty(T value) {
    Node* none = nullptr;
    Node* node = make(std::move(value));
    if (!current_.compare_exchange_strong(none, node)) release(node);
  }

 private:
  struct Node {
    T value;
    Node* next = nullptr;
  };

  static Node* make(T value) { return std::make_unique<Node>(Node{std::move(value)}).release(); }

  void setAside(Node* first, Node* last) {
    last->next = replaced_.load();
    while (!replaced_.compare_exchange_weak(last->next, first)) {
    }
  }

  static void release(Node* node) {
    while (node) {
      const std::unique_ptr<Node> owned(std::exchange(node, node->next));
    }
  }

  // All operations are sequentially consistent: the release of replaced values depends on it.
  mutable std::atomic<int> readers_ = 0;
  std::atomic<Node*> current_ = nullptr;
  std::atomic<Node*> replaced_ = nullptr;
};

}  // namespace orvane
