#pragma once

#include "base/windows.h"

#include <cstddef>
#include <winspool.h>

#include "base/owner.h"

namespace quillo {

/// A kernel handle; both null and INVALID_HANDLE_VALUE own nothing.
struct KernelHandleTraits {
  using Type = HANDLE;
  static constexpr Type kNull = nullptr;
  static bool IsNull(Type handle) { return handle == nullptr || handle == INVALID_HANDLE_VALUE; }
  static void Release(Type handle) { CloseHandle(handle); }
};
using KernelHandle = Owner<KernelHandleTraits>;

struct RegistryKeyTraits {
  using Type = HKEY;
  static constexpr Type kNull = nullptr;
  static void Release(Type key) { RegCloseKey(key); }
};
using RegistryKey = Owner<RegistryKeyTraits>;

struct PrinterHandleTraits {
  using Type = HANDLE;
  static constexpr Type kNull = nullptr;
  static void Release(Type printer) { ClosePrinter(printer); }
};
using PrinterHandle = Owner<PrinterHandleTraits>;

struct LibraryTraits {
  using Type = HMODULE;
  static constexpr Type kNull = nullptr;
  static void Release(Type module) { FreeLibrary(module); }
};
using Library = Owner<LibraryTraits>;

/// A zero-initialised global memory block, locked for as long as it lives.
struct GlobalBlockTraits {
  using Type = void*;
  static constexpr Type kNull = nullptr;
  static void Release(Type block) {
    const HGLOBAL handle = GlobalHandle(block);
    GlobalUnlock(handle);
    GlobalFree(handle);
  }
};
class GlobalBlock : public Owner<GlobalBlockTraits> {
 public:
  using Owner::Owner;
  /// Empty when memory is short.
  static GlobalBlock Allocate(size_t bytes) {
    const HGLOBAL handle = GlobalAlloc(GHND, bytes);
    if (handle == nullptr) return GlobalBlock();
    void* block = GlobalLock(handle);
    if (block == nullptr) GlobalFree(handle);
    return GlobalBlock(block);
  }
  /// Frees a block that Detach returned, or null.
  static void Free(void* block) { const GlobalBlock owner(block); }
};

/// A block of some heap, by default zero-filled and from the process heap.
class HeapBlock {
 public:
  HeapBlock() = default;
  /// Empty when memory is short.
  explicit HeapBlock(size_t bytes, HANDLE heap = GetProcessHeap(), DWORD flags = HEAP_ZERO_MEMORY)
      : heap_(heap), block_(HeapAlloc(heap, flags, bytes)) {}
  HeapBlock(HeapBlock&& other) noexcept
      : heap_(other.heap_), block_(std::exchange(other.block_, nullptr)) {}
  HeapBlock& operator=(HeapBlock&& other) noexcept {
    std::swap(heap_, other.heap_);
    std::swap(block_, other.block_);
    return *this;
  }
  /// Takes ownership of a block of `heap`, or of nothing when it is null.
  static HeapBlock Adopt(void* block, HANDLE heap = GetProcessHeap()) {
    HeapBlock owner;
    owner.heap_ = heap;
    owner.block_ = block;
    return owner;
  }
  HeapBlock(const HeapBlock&) = delete;
  HeapBlock& operator=(const HeapBlock&) = delete;
  ~HeapBlock() {
    if (block_ == nullptr) return;
    const DWORD last_error = GetLastError();
    HeapFree(heap_, 0, block_);
    SetLastError(last_error);
  }

  [[nodiscard]] void* Get() const { return block_; }
  template <typename T>
  [[nodiscard]] T* As() const {
    return static_cast<T*>(block_);
  }
  [[nodiscard]] void* Detach() { return std::exchange(block_, nullptr); }
  explicit operator bool() const { return block_ != nullptr; }

 private:
  HANDLE heap_ = nullptr;
  void* block_ = nullptr;
};

}  // namespace quillo
