#pragma once

#include <cstdint>

namespace quillo::imaging {

// Memory types: bit sets that say where the pixels of a new bitmap may lie.
constexpr uint32_t kMemorySection = 0x1;     // a section, else tiles, else a file
constexpr uint32_t kMemoryCaller = 0x2;      // the caller's memory
constexpr uint32_t kMemoryDisk = 0x4;        // no section: tiles, else a file
constexpr uint32_t kMemoryNoTiles = 0x8;     //
constexpr uint32_t kMemoryFile = 0x80;       // always a temporary file
constexpr uint32_t kMemoryNoFile = 0x100;    // alone: never a temporary file
constexpr uint32_t kMemoryCompress = 0x200;  // 1-bit bitmaps: compressed chunks
constexpr uint32_t kMemoryUnused = 0x400;    // accepted, without effect

// Combinations.
constexpr uint32_t kMemorySectionElseFile = kMemorySection | kMemoryNoTiles;
constexpr uint32_t kMemoryChunks = kMemoryCompress | kMemoryNoFile;

/// Whether `memory_type` is one of the combinations that exist.
constexpr bool IsMemoryType(uint32_t memory_type) {
  switch (memory_type) {
    case kMemorySection:
    case kMemoryCaller:
    case kMemoryDisk:
    case kMemoryNoTiles:
    case kMemorySectionElseFile:
    case kMemoryFile:
    case kMemoryNoFile:
    case kMemoryChunks:
    case kMemoryUnused:
    case kMemoryUnused | kMemorySection:
      return true;
    default:
      return false;
  }
}

}  // namespace quillo::imaging
