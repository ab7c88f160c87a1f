#pragma once

#include "base/windows.h"

#include <algorithm>
#include <vector>

#include "base/gdi_owners.h"

namespace quillo::test {

/// Tells how many GDI objects the process has, but for a constant: freed ones are given out again
/// before others, so that the highest number among many fresh ones grows with each that leaks.
inline uintptr_t LiveGdiObjects() {
  std::vector<Pen> fresh;
  uintptr_t highest = 0;
  for (int i = 0; i < 1000; ++i) {
    fresh.emplace_back(CreatePen(PS_SOLID, 1, 0));
    highest = std::max(highest, reinterpret_cast<uintptr_t>(fresh.back().Get()) & 0xFFFF);
  }
  return highest;
}

}  // namespace quillo::test
