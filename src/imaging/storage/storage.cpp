#include "imaging/storage/storage.h"

#include <numeric>
#include <utility>

#include "base/system_owners.h"
#include "imaging/bitmap/kernel_settings.h"
#include "imaging/storage/chunks.h"
#include "imaging/storage/rows.h"
#include "imaging/storage/section.h"
#include "imaging/storage/storage_choice.h"
#include "imaging/storage/temporary_file.h"
#include "imaging/storage/tiles.h"

namespace quillo::imaging {
namespace {

constexpr uint32_t kStorageFlags = kAllocated | kMemory | kDisk | kLocked | kCompressed |
                                   kCallerMemory | kGlobalMemory | kTiled | 0x8000;
constexpr uint32_t kAlignment = 32;            // bytes, of the first row in a section
constexpr uint32_t kMaxSizeWithoutLock = 244;  // of a record

template <typename T>
T* AllocateIdentity(size_t count) {
  auto* table = static_cast<T*>(GlobalBlock::Allocate(count * sizeof(T)).Detach());
  if (table != nullptr) std::iota(table, table + count, T{0});
  return table;
}

void ReleaseTables(BitmapHandle& record) {
  GlobalBlock::Free(std::exchange(record.lookup8, nullptr));
  if (record.structure_size == kOldForm) return;
  GlobalBlock::Free(std::exchange(record.lookup16, nullptr));
  if (record.lock != nullptr) DeleteCriticalSection(record.lock);
  GlobalBlock::Free(std::exchange(record.lock, nullptr));
}

bool AllocateTables(BitmapHandle& record) {
  record.lookup8 = AllocateIdentity<uint8_t>(kLevels8);
  if (record.lookup8 == nullptr) return false;
  if (record.structure_size > kOldForm) {
    record.lookup16 = AllocateIdentity<uint16_t>(kLevels16);
    if (record.lookup16 == nullptr) return false;
  }
  if (record.structure_size > kMaxSizeWithoutLock) {
    GlobalBlock lock = GlobalBlock::Allocate(sizeof(CRITICAL_SECTION));
    if (!lock) return false;
    record.lock = static_cast<CRITICAL_SECTION*>(lock.Detach());
    InitializeCriticalSection(record.lock);
  }
  return true;
}

/// Where pixels lie: what a record holds of its storage.
struct Pixels {
  HANDLE handle = nullptr;
  std::byte* address = nullptr;
  uint32_t view_offset = 0;
  uint32_t flags = 0;
};

void Install(const Pixels& pixels, BitmapHandle& record) {
  record.storage_handle = pixels.handle;
  record.data_address = pixels.address;
  record.view_offset = pixels.view_offset;
  record.flags = (record.flags & ~kStorageFlags) | pixels.flags;
}

Pixels PixelsOf(const BitmapHandle& record) {
  return {record.storage_handle, record.data_address, record.view_offset,
          record.flags & kStorageFlags};
}

bool AllocateSection(uint64_t data_size, Pixels* pixels) {
  const Section section = TakeSection(data_size + kAlignment - 1);
  if (section.view == nullptr) return false;
  const auto offset =
      static_cast<uint32_t>(-reinterpret_cast<uintptr_t>(section.view) % kAlignment);
  *pixels = {section.handle, section.view + offset, offset, kAllocated | kMemory};
  return true;
}

bool AllocateCompressed(const BitmapHandle& record, Pixels* pixels) {
  Chunk* table = AllocateChunks(record.height, record.bytes_per_line);
  if (table == nullptr) return false;
  *pixels = {nullptr, reinterpret_cast<std::byte*>(table), 0, kAllocated | kMemory | kCompressed};
  return true;
}

bool AllocateTiled(const BitmapHandle& record, bool on_disk, Pixels* pixels) {
  TileTable* table = AllocateTiles(record.height, record.bytes_per_line, on_disk);
  if (table == nullptr) return false;
  *pixels = {nullptr, reinterpret_cast<std::byte*>(table), 0, kAllocated | kMemory | kTiled};
  return true;
}

int AllocateOnDisk(uint64_t data_size, Pixels* pixels) {
  KernelHandle file;
  const int result = MakeTemporaryFile(data_size, &file);
  if (result != kSuccess) return result;
  *pixels = {file.Detach(), nullptr, 0, kAllocated | kDisk};
  return kSuccess;
}

uint32_t ChooseMemoryType(uint32_t memory_type, uint64_t data_size) {
  const KernelSettings& settings = ThreadSettings();
  const MemoryLimits limits{settings.memory_threshold, settings.memory_reserve,
                            settings.maximum_memory};
  if (data_size <= SmallSize(limits)) return KeepSmallInMemory(memory_type);
  MEMORYSTATUS status{};
  status.dwLength = sizeof(status);
  GlobalMemoryStatus(&status);
  return ChooseForLarge(memory_type, data_size, limits,
                        {status.dwTotalPhys, status.dwAvailPhys, status.dwAvailPageFile});
}

/// Tries a section, tiles and a temporary file, as the memory type allows.
int AllocatePixels(const BitmapHandle& record, uint32_t memory_type, Pixels* pixels) {
  if (memory_type == kMemoryCaller) {
    pixels->flags = kAllocated | kMemory | kCallerMemory;
    return kSuccess;
  }
  if ((memory_type & kMemoryCompress) != 0 && record.bits_per_pixel == 1) {
    return AllocateCompressed(record, pixels) ? kSuccess : kOutOfMemory;
  }
  const uint32_t type = ChooseMemoryType(memory_type, record.data_size);
  const bool disk = (type & kMemoryDisk) != 0;
  const bool file = (type & kMemoryFile) != 0;
  const bool tiles = (type & kMemoryNoTiles) == 0;
  if (!disk && !file && AllocateSection(record.data_size, pixels)) return kSuccess;
  if (tiles && !file && AllocateTiled(record, disk, pixels)) return kSuccess;
  if (type != kMemoryNoFile) return AllocateOnDisk(record.data_size, pixels);
  return kOutOfMemory;
}

void ReleasePixels(BitmapHandle& record) {
  const uint32_t flags = record.flags;
  if ((flags & kAllocated) == 0) return;
  if ((flags & kCompressed) != 0) {
    ReleaseChunks(reinterpret_cast<Chunk*>(record.data_address), record.height);
  } else if ((flags & kTiled) != 0) {
    ReleaseTiles(reinterpret_cast<TileTable*>(record.data_address));
  } else if ((flags & kGlobalMemory) != 0) {
    Unlock(&record);
    GlobalFree(record.storage_handle);
  } else if ((flags & kDisk) != 0) {
    CloseHandle(record.storage_handle);
  } else if ((flags & kCallerMemory) == 0) {
    GiveBackSection({record.storage_handle, record.data_address - record.view_offset,
                     record.data_size + kAlignment - 1});
  }
  Install({}, record);
}

}  // namespace

int AllocateStorage(BitmapHandle& record, uint32_t memory_type) {
  if (record.data_size == 0) return kEmptyData;
  if (!IsMemoryType(memory_type)) return kInvalidArgument;
  Install({}, record);
  Pixels pixels;
  const int result =
      AllocateTables(record) ? AllocatePixels(record, memory_type, &pixels) : kOutOfMemory;
  if (result != kSuccess) {
    ReleaseTables(record);
    return result;
  }
  Install(pixels, record);
  return kSuccess;
}

void ReleaseStorage(BitmapHandle& record) {
  ReleaseTables(record);
  ReleasePixels(record);
}

void ExchangePixels(BitmapHandle& a, BitmapHandle& b) {
  const Pixels of_a = PixelsOf(a);
  const Pixels of_b = PixelsOf(b);
  Install(of_b, a);
  Install(of_a, b);
  std::swap(a.width, b.width);
  std::swap(a.height, b.height);
  std::swap(a.bytes_per_line, b.bytes_per_line);
  std::swap(a.view_perspective, b.view_perspective);
  std::swap(a.data_size, b.data_size);
  if (a.structure_size == kCurrentForm) std::swap(a.large_data_size, b.large_data_size);
}

int MoveToSection(BitmapHandle& record) {
  if ((record.flags & (kCompressed | kGlobalMemory)) == 0) return kSuccess;
  const LockScope lock(record);
  if (lock.Result() != kSuccess) return lock.Result();
  Pixels pixels;
  if (!AllocateSection(record.data_size, &pixels)) return kOutOfMemory;
  for (uint32_t row = 0; row < record.height; ++row) {
    std::byte* target = pixels.address + size_t{row} * record.bytes_per_line;
    FetchRow(record, row, {target, record.bytes_per_line});
  }
  ReleasePixels(record);
  Install(pixels, record);
  return kSuccess;
}

}  // namespace quillo::imaging
