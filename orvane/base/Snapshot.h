#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <utility>

namespace orvane {

/// A value that is read and replaced whole, by any number of threads, without a lock: a reader gets the value
/// as one store left it. Empty until the first store.
///
/// A replaced value is set aside first, and released by a store that finds no reader under way: whoever reads
/// after that can only meet its successor.
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

  /// A copy of the present value; nothing before the first store.
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

  /// Stores unless something is stored already.
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

  // All in sequentially consistent order, which the argument above needs.
  mutable std::atomic<int> readers_ = 0;
  std::atomic<Node*> current_ = nullptr;
  std::atomic<Node*> replaced_ = nullptr;
};

}  // namespace orvane
