#pragma once

#include "base/windows.h"

#include <algorithm>
#include <array>
#include <vector>

#include "base/gdi_owners.h"
#include "base/system_owners.h"

namespace quillo::test {

/// The number of GDI objects of the process but for a constant: freed handles are used again before
/// others, so that the highest among many new ones grows with each leak.
inline uintptr_t LiveGdiObjects() {
  std::vector<Pen> fresh;
  uintptr_t highest = 0;
  for (int i = 0; i < 1000; ++i) {
    fresh.emplace_back(CreatePen(PS_SOLID, 1, 0));
    highest = std::max(highest, reinterpret_cast<uintptr_t>(fresh.back().Get()) & 0xFFFF);
  }
  return highest;
}

/// The same for kernel handles, which Wine does not count either.
inline uintptr_t LiveKernelHandles() {
  std::vector<KernelHandle> fresh;
  uintptr_t highest = 0;
  for (int i = 0; i < 100; ++i) {
    fresh.emplace_back(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    highest = std::max(highest, reinterpret_cast<uintptr_t>(fresh.back().Get()));
  }
  return highest;
}

/// What the process holds.
struct Holdings {
  uintptr_t gdi_objects;
  uintptr_t kernel_handles;
  size_t heap_bytes;

  static Holdings Now() {
    Holdings now = {};
    now.gdi_objects = LiveGdiObjects();
    now.kernel_handles = LiveKernelHandles();
    std::array<HANDLE, 64> heaps{};
    const DWORD count = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    for (DWORD i = 0; i < std::min<size_t>(count, heaps.size()); ++i) {
      PROCESS_HEAP_ENTRY entry = {};
      while (HeapWalk(heaps[i], &entry)) {
        if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) now.heap_bytes += entry.cbData;
      }
    }
    return now;
  }
};

}  // namespace quillo::test
