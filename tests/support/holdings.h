#pragma once

#include "base/windows.h"

#include <algorithm>
#include <array>
#include <vector>

#include "base/gdi_owners.h"
#include "base/system_owners.h"

namespace quillo::test {

/// The number of objects of a kind but for a constant: freed handles are used again before others,
/// so that the highest among many new ones grows with each leak.
template <typename Owner, typename Make>
uintptr_t HighestHandle(int count, uintptr_t mask, Make make) {
  std::vector<Owner> fresh;
  uintptr_t highest = 0;
  for (int i = 0; i < count; ++i) {
    fresh.emplace_back(make());
    highest = std::max(highest, reinterpret_cast<uintptr_t>(fresh.back().Get()) & mask);
  }
  return highest;
}

inline uintptr_t LiveGdiObjects() {
  return HighestHandle<Pen>(1000, 0xFFFF, [] { return CreatePen(PS_SOLID, 1, 0); });
}

/// Wine does not count these either.
inline uintptr_t LiveKernelHandles() {
  return HighestHandle<KernelHandle>(100, ~uintptr_t{0},
                                     [] { return CreateEventW(nullptr, TRUE, FALSE, nullptr); });
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
