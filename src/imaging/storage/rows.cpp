#include "imaging/storage/rows.h"

#include <cstring>

#include "imaging/storage/chunks.h"
#include "imaging/storage/temporary_file.h"
#include "imaging/storage/tiles.h"

namespace quillo::imaging {
namespace {

uint64_t OffsetOf(const BitmapHandle& record, uint32_t row) {
  return uint64_t{row} * record.bytes_per_line;
}

Chunk* ChunksOf(const BitmapHandle& record) {
  return reinterpret_cast<Chunk*>(record.data_address);
}

}  // namespace

std::byte* RowAddress(const BitmapHandle& record, uint32_t row) {
  if ((record.flags & (kCompressed | kDisk)) != 0 || record.data_address == nullptr) return nullptr;
  if ((record.flags & kTiled) != 0) {
    return TileRow(*reinterpret_cast<const TileTable*>(record.data_address), row,
                   record.bytes_per_line);
  }
  return record.data_address + OffsetOf(record, row);
}

int FetchRow(const BitmapHandle& record, uint32_t row, MutableBytes out) {
  if (const std::byte* address = RowAddress(record, row)) {
    std::memcpy(out.data(), address, record.bytes_per_line);
    return kSuccess;
  }
  if ((record.flags & kDisk) != 0) {
    return ReadAt(record.storage_handle, OffsetOf(record, row), out.data(), record.bytes_per_line)
               ? kSuccess
               : kFileError;
  }
  if ((record.flags & kCompressed) == 0) return kNoStorage;
  FetchChunkRow(ChunksOf(record), row, out.first(record.bytes_per_line));
  return kSuccess;
}

int StoreRow(const BitmapHandle& record, uint32_t row, Bytes data) {
  if (std::byte* address = RowAddress(record, row)) {
    std::memcpy(address, data.data(), data.size());
    return kSuccess;
  }
  if ((record.flags & kDisk) != 0) {
    return WriteAt(record.storage_handle, OffsetOf(record, row), data.data(),
                   static_cast<uint32_t>(data.size()))
               ? kSuccess
               : kFileError;
  }
  if ((record.flags & kCompressed) == 0) return kNoStorage;
  return StoreChunkRow(ChunksOf(record), row, data) ? kSuccess : kOutOfMemory;
}

const std::byte* BorrowRow(const BitmapHandle& record, uint32_t row, MutableBytes scratch) {
  if (const std::byte* address = RowAddress(record, row)) return address;
  return FetchRow(record, row, scratch) == kSuccess ? scratch.data() : nullptr;
}

}  // namespace quillo::imaging
