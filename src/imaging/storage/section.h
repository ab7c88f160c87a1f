#pragma once

#include "base/windows.h"

#include <cstddef>
#include <cstdint>

namespace quillo::imaging {

/// A memory section and a view of all of it.
struct Section {
  HANDLE handle = nullptr;
  std::byte* view = nullptr;
  uint64_t size = 0;  // bytes
};

/// A section of at least `size` bytes, all zero; without a view when memory is short.
Section TakeSection(uint64_t size);

/// Releases a section, or keeps it for the next one in place of the one kept before: a section
/// costs more than the pixels of most pictures. A large one is not kept.
void GiveBackSection(const Section& section);

/// Releases the section that is kept.
void DropSpareSection();

}  // namespace quillo::imaging
