#pragma once

#include <cstddef>
#include <cstdint>

#include "base/bytes.h"

namespace quillo::imaging {

constexpr uint32_t kRowsPerChunk = 32768;

/// Where a packed row lies in its chunk's buffer; size 0 is a row of zeros.
struct PackedRow {
  uint64_t offset;
  uint64_t size;
};

/// Up to kRowsPerChunk packed rows. Compressed storage is a table of these.
struct Chunk {
  PackedRow* rows;     // kRowsPerChunk entries
  std::byte* data;     // packed rows, in the order of their writing
  uint64_t used;       // bytes of data
  uint64_t capacity;   // bytes of data
  std::byte* scratch;  // PackedBound of a row
};

constexpr uint32_t ChunkCount(uint32_t height) {
  return height / kRowsPerChunk + (height % kRowsPerChunk != 0 ? 1 : 0);
}

/// A table for `height` rows, all zero; null when memory is short.
Chunk* AllocateChunks(uint32_t height, uint32_t bytes_per_line);
void ReleaseChunks(Chunk* table, uint32_t height);

void FetchChunkRow(const Chunk* table, uint32_t row, MutableBytes out);
/// False when memory is short; the row then keeps what it held.
bool StoreChunkRow(Chunk* table, uint32_t row, Bytes data);

}  // namespace quillo::imaging
