#pragma once

#include "base/windows.h"

#include <cstddef>

namespace quillo {

/// Base of classes whose objects live on the process heap: `new` returns null when memory is short.
/// (The language runtime's own nothrow form throws and catches an exception internally, and ends
/// the process when there is no memory left for that.)
struct HeapObject {
  static void* operator new(size_t size) noexcept { return HeapAlloc(GetProcessHeap(), 0, size); }
  static void operator delete(void* object) noexcept { HeapFree(GetProcessHeap(), 0, object); }
};

}  // namespace quillo
