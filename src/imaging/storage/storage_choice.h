#pragma once

#include <cstdint>

#include "imaging/bitmap/memory_type.h"

namespace quillo::imaging {

constexpr int64_t kDefaultMemoryThreshold = 16 << 20;
constexpr int64_t kDefaultTileSize = 16 << 20;

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

/// Compatibility: a small bitmap never goes to disk, even when disk was asked for. Kept for callers
/// that rely on the addresses of its rows.
constexpr uint32_t KeepSmallInMemory(uint32_t memory_type) {
  if ((memory_type & kMemoryDisk) == 0) return memory_type;
  return (memory_type & ~kMemoryDisk) | kMemorySection;
}

/// The memory type of a bitmap above SmallSize: with kMemoryDisk when it would take more than
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
  return short_of_memory ? memory_type | kMemoryDisk : memory_type;
}

}  // namespace quillo::imaging
