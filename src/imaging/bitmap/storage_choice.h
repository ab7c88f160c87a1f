#pragma once

#include <cstdint>

namespace quillo::imaging {

// Memory types: bit sets that say where the pixels of a new bitmap may lie.
constexpr uint32_t kMemoryTypeSection = 0x1;     // a section, else tiles, else a file
constexpr uint32_t kMemoryTypeCaller = 0x2;      // the caller's memory
constexpr uint32_t kMemoryTypeDisk = 0x4;        // no section: tiles, else a file
constexpr uint32_t kMemoryTypeNoTiles = 0x8;     //
constexpr uint32_t kMemoryTypeFile = 0x80;       // always a temporary file
constexpr uint32_t kMemoryTypeNoFile = 0x100;    // alone: never a temporary file
constexpr uint32_t kMemoryTypeCompress = 0x200;  // 1-bit bitmaps: compressed chunks
constexpr uint32_t kSectionElseDisk = kMemoryTypeSection | kMemoryTypeNoTiles;

constexpr int64_t kDefaultMemoryThreshold = 16 << 20;
constexpr int64_t kDefaultTileSize = 16 << 20;

/// Whether `memory_type` is one of the combinations that exist.
constexpr bool IsMemoryType(uint32_t memory_type) {
  switch (memory_type) {
    case 1:
    case 2:
    case 4:
    case 8:
    case 9:
    case 128:
    case 256:
    case 768:
    case 1024:
    case 1025:
      return true;
    default:
      return false;
  }
}

/// What bounds the memory of one bitmap.
struct MemoryLimits {
  int64_t threshold;  // bytes that are always given memory; the default when below 1
  int64_t reserve;    // bytes to keep free; negative: a percentage of the total
  int64_t maximum;    // bytes; negative: a percentage of the total
};

/// The machine's memory, in bytes.
struct MemoryState {
  uint64_t total;
  uint64_t free_physical;
  uint64_t free_page_file;
};

/// Bytes up to which a bitmap is small.
constexpr uint64_t SmallSize(const MemoryLimits& limits) {
  return static_cast<uint64_t>(limits.threshold < 1 ? kDefaultMemoryThreshold : limits.threshold);
}

/// A small bitmap never goes to disk, also when disk was asked for. This is meant.
constexpr uint32_t KeepSmallInMemory(uint32_t memory_type) {
  if ((memory_type & kMemoryTypeDisk) == 0) return memory_type;
  return (memory_type & ~kMemoryTypeDisk) | kMemoryTypeSection;
}

/// The memory type of a bitmap above SmallSize: with kMemoryTypeDisk when it would take more than
/// the machine can spare or than the limits allow.
constexpr uint32_t ChooseForLarge(uint32_t memory_type, uint64_t data_size,
                                  const MemoryLimits& limits, const MemoryState& memory) {
  const auto bytes = [&memory](int64_t setting) {
    if (setting >= 0) return static_cast<uint64_t>(setting);
    // More than ten times the memory is no limit; the bound keeps the product in range.
    const uint64_t percent = setting < -1000 ? 1000 : static_cast<uint64_t>(-setting);
    return memory.total / 100 * percent;
  };
  const uint64_t free = memory.free_physical + memory.free_page_file;
  const uint64_t reserve = bytes(limits.reserve);
  const uint64_t available = free > reserve ? free - reserve : 0;
  const bool short_of_memory = data_size > available || data_size > bytes(limits.maximum);
  return short_of_memory ? memory_type | kMemoryTypeDisk : memory_type;
}

}  // namespace quillo::imaging
