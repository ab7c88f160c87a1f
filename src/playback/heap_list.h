#pragma once

#include "base/windows.h"

#include <cstdint>
#include <new>
#include <utility>

namespace quillo {

/// Singly linked list of plain values on a heap that outlives it. Clear() frees the memory.
template <typename T>
class HeapList {
 public:
  explicit HeapList(HANDLE heap) : heap_(heap) {}
  HeapList(const HeapList&) = delete;
  HeapList& operator=(const HeapList&) = delete;
  ~HeapList() { Clear(); }

  /// Appends at the tail; false when memory is short.
  bool Append(const T& value) {
    void* block = HeapAlloc(heap_, 0, sizeof(Node));
    if (block == nullptr) return false;
    Node* node = new (block) Node{value, nullptr};
    (tail_ != nullptr ? tail_->next : head_) = node;
    tail_ = node;
    ++count_;
    return true;
  }

  void Clear() {
    for (Node* node = std::exchange(head_, nullptr); node != nullptr;) {
      HeapFree(heap_, 0, std::exchange(node, node->next));
    }
    tail_ = nullptr;
    count_ = 0;
  }

  [[nodiscard]] uint32_t Count() const { return count_; }

  /// The first value that `matches` accepts, or null.
  template <typename Predicate>
  const T* Find(Predicate matches) const {
    for (const Node* node = head_; node != nullptr; node = node->next) {
      if (matches(node->value)) return &node->value;
    }
    return nullptr;
  }

  /// Visits the values in list order.
  template <typename Visitor>
  void ForEach(Visitor visit) const {
    for (const Node* node = head_; node != nullptr; node = node->next) visit(node->value);
  }

 private:
  struct Node {
    T value;
    Node* next;
  };

  HANDLE heap_;
  Node* head_ = nullptr;
  Node* tail_ = nullptr;
  uint32_t count_ = 0;
};

}  // namespace quillo
