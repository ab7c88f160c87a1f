#include "imaging/storage/chunks.h"

#include <algorithm>
#include <cstring>

#include "base/system_owners.h"
#include "imaging/pixels/packed_rows.h"

namespace quillo::imaging {
namespace {

template <typename T>
T* Allocate(size_t count) {
  return static_cast<T*>(GlobalBlock::Allocate(count * sizeof(T)).Detach());
}

/// Copies the rows that are still in use into a larger buffer with room for `needed` more bytes.
bool Grow(Chunk& chunk, uint64_t needed) {
  uint64_t live = 0;
  for (uint32_t i = 0; i < kRowsPerChunk; ++i) live += chunk.rows[i].size;
  const uint64_t capacity = (live + needed) * 2;
  auto* data = Allocate<std::byte>(capacity);
  if (data == nullptr) return false;
  uint64_t used = 0;
  for (uint32_t i = 0; i < kRowsPerChunk; ++i) {
    PackedRow& row = chunk.rows[i];
    if (row.size == 0) continue;
    std::memcpy(data + used, chunk.data + row.offset, row.size);
    row.offset = used;
    used += row.size;
  }
  GlobalBlock::Free(chunk.data);
  chunk.data = data;
  chunk.used = used;
  chunk.capacity = capacity;
  return true;
}

}  // namespace

Chunk* AllocateChunks(uint32_t height, uint32_t bytes_per_line) {
  const uint32_t count = ChunkCount(height);
  auto* table = Allocate<Chunk>(count);
  if (table == nullptr) return nullptr;
  for (uint32_t i = 0; i < count; ++i) {
    table[i].rows = Allocate<PackedRow>(kRowsPerChunk);
    table[i].scratch = Allocate<std::byte>(PackedBound(bytes_per_line));
    if (table[i].rows == nullptr || table[i].scratch == nullptr) {
      ReleaseChunks(table, height);
      return nullptr;
    }
  }
  return table;
}

void ReleaseChunks(Chunk* table, uint32_t height) {
  for (uint32_t i = 0; i < ChunkCount(height); ++i) {
    GlobalBlock::Free(table[i].rows);
    GlobalBlock::Free(table[i].data);
    GlobalBlock::Free(table[i].scratch);
  }
  GlobalBlock::Free(table);
}

void FetchChunkRow(const Chunk* table, uint32_t row, MutableBytes out) {
  const Chunk& chunk = table[row / kRowsPerChunk];
  const PackedRow& packed = chunk.rows[row % kRowsPerChunk];
  UnpackRow({chunk.data + packed.offset, packed.size}, out);
}

bool StoreChunkRow(Chunk* table, uint32_t row, Bytes data) {
  Chunk& chunk = table[row / kRowsPerChunk];
  PackedRow& packed = chunk.rows[row % kRowsPerChunk];
  const size_t size = PackRow(data, {chunk.scratch, PackedBound(data.size())});
  if (size > packed.size) {
    if (size > chunk.capacity - chunk.used && !Grow(chunk, size)) return false;
    packed.offset = chunk.used;
    chunk.used += size;
  }
  packed.size = size;
  std::memcpy(chunk.data + packed.offset, chunk.scratch, size);
  return true;
}

}  // namespace quillo::imaging
