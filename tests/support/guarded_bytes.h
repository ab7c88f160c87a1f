#pragma once

#include "base/windows.h"

#include "base/bytes.h"

namespace quillo::test {

/// Memory, all zeros, whose end is the end of what may be touched.
class GuardedBytes {
 public:
  explicit GuardedBytes(size_t size) : size_(size) {
    constexpr size_t kPage = 4096;
    const size_t room = (size + kPage - 1) / kPage * kPage;
    base_ = static_cast<std::byte*>(
        VirtualAlloc(nullptr, room + kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    DWORD old = 0;
    VirtualProtect(base_ + room, kPage, PAGE_NOACCESS, &old);
    begin_ = base_ + room - size;
  }
  ~GuardedBytes() { VirtualFree(base_, 0, MEM_RELEASE); }
  GuardedBytes(const GuardedBytes&) = delete;
  GuardedBytes& operator=(const GuardedBytes&) = delete;

  std::byte* Get() const { return begin_; }
  DEVMODEW* Mode() const { return reinterpret_cast<DEVMODEW*>(begin_); }
  size_t Size() const { return size_; }
  MutableBytes All() const { return {begin_, size_}; }

 private:
  size_t size_;
  std::byte* base_;
  std::byte* begin_;
};

}  // namespace quillo::test
