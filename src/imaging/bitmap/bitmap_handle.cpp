#include "imaging/bitmap/bitmap_handle.h"

#include <algorithm>
#include <cstring>

#include "base/system_owners.h"
#include "imaging/bitmap/kernel_settings.h"
#include "imaging/bitmap/storage.h"

namespace quillo::imaging {
namespace {

constexpr uint64_t kOldFormLimit = 0xFFFF0000;  // bytes of pixel data

uint32_t ResolutionOf(int32_t setting) {
  return setting < 1 ? 150 : static_cast<uint32_t>(setting);
}

uint32_t DefaultColourOrder(uint32_t bits_per_pixel) {
  if (bits_per_pixel < 9) return kOrderPalette;
  return bits_per_pixel == 12 ? kOrderGrey : kOrderColour;
}

int32_t HighBit(uint32_t bits_per_pixel) {
  switch (bits_per_pixel) {
    case 16:
    case 48:
    case 64:
      return 15;
    case 24:
      return 7;
    case 32:
      return -1;
    default:
      return static_cast<int32_t>(bits_per_pixel) - 1;
  }
}

int SetPalette(BitmapHandle& record, const PaletteEntry* palette, bool grey) {
  if (record.bits_per_pixel > 8) return kSuccess;
  if (AllocatePalette(record) != kSuccess) return kOutOfMemory;
  const std::span<PaletteEntry> entries = PaletteOf(record);
  if (grey) {
    FillGreyRamp(entries);
  } else if (palette != nullptr) {
    std::copy_n(palette, entries.size(), entries.begin());
  } else {
    FillDefaultPalette(entries);
  }
  return kSuccess;
}

}  // namespace

int Init(BitmapHandle* record, uint32_t structure_size, uint32_t width, uint32_t height,
         uint32_t bits_per_pixel) {
  if (record == nullptr) return kInvalidArgument;
  if (!IsStructureSize(structure_size)) return kWrongStructureSize;
  std::memset(static_cast<void*>(record), 0, structure_size);
  record->structure_size = structure_size;
  if (width == 0 && height == 0 && bits_per_pixel == 0) return kSuccess;
  if (!IsSupportedDepth(bits_per_pixel)) return kUnsupportedDepth;

  const std::optional<Geometry> geometry = MakeGeometry(width, height, bits_per_pixel);
  if (structure_size == kOldForm && (!geometry || geometry->data_size > kOldFormLimit)) {
    std::memset(static_cast<void*>(record), 0, structure_size);
    return kTooLargeForOldForm;
  }
  if (!geometry) return kInvalidArgument;

  const KernelSettings& settings = ThreadSettings();
  record->width = width;
  record->height = height;
  record->bits_per_pixel = bits_per_pixel;
  record->bytes_per_line = geometry->bytes_per_line;
  record->colours = PaletteSize(bits_per_pixel);
  record->view_perspective = kBottomRowFirst;
  record->colour_order = DefaultColourOrder(bits_per_pixel);
  record->data_size = geometry->data_size;
  record->process_value = settings.process_value;
  record->x_resolution = ResolutionOf(settings.x_resolution);
  record->y_resolution = ResolutionOf(settings.y_resolution);
  record->high_bit = HighBit(bits_per_pixel);
  record->low_bit = record->high_bit;
  record->percent = 100;
  if (structure_size == kCurrentForm) record->large_data_size = geometry->data_size;
  return kSuccess;
}

int Create(BitmapHandle* record, uint32_t structure_size, uint32_t memory_type, uint32_t width,
           uint32_t height, uint32_t bits_per_pixel, uint32_t colour_order,
           const PaletteEntry* palette, uint32_t view_perspective, void* caller_data,
           uint64_t caller_data_size) {
  const bool grey = bits_per_pixel == 0;
  int result = Init(record, structure_size, width, height, grey ? 8 : bits_per_pixel);
  if (result != kSuccess) return result;
  record->colour_order = colour_order;
  if (colour_order == kOrderExtended && bits_per_pixel != 24 && bits_per_pixel != 48) {
    return kUnsupportedDepth;
  }
  result = AllocateStorage(*record, memory_type);
  if (result == kSuccess) result = SetPalette(*record, palette, grey);
  if (result == kSuccess) {
    record->view_perspective = view_perspective == 0 ? kTopRowFirst : view_perspective;
    if (record->view_perspective > 8) result = kInvalidArgument;
  }
  if (result == kSuccess && memory_type == kMemoryTypeCaller && caller_data != nullptr) {
    if (caller_data_size != record->data_size) {
      result = kInvalidArgument;
    } else {
      record->data_address = static_cast<std::byte*>(caller_data);
    }
  }
  if (result != kSuccess) Free(record);
  return result;
}

void Free(BitmapHandle* record) {
  if (record == nullptr || !IsStructureSize(record->structure_size)) return;
  if (record->attached_object != nullptr) record->attached_object->Release();
  GlobalBlock::Free(record->palette);
  ReleaseStorage(*record);
  Init(record, record->structure_size, 0, 0, 0);
}

int Lock(BitmapHandle* record) {
  if (record == nullptr) return kInvalidArgument;
  if (!IsStructureSize(record->structure_size)) return kWrongStructureSize;
  if ((record->flags & kGlobalMemory) == 0 || (record->flags & kLocked) != 0) return kSuccess;
  void* address = GlobalLock(record->storage_handle);
  if (address == nullptr) return kOutOfMemory;
  record->data_address = static_cast<std::byte*>(address) + record->view_offset;
  record->flags |= kLocked;
  return kSuccess;
}

void Unlock(BitmapHandle* record) {
  if ((record->flags & kGlobalMemory) == 0 || (record->flags & kLocked) == 0) return;
  GlobalUnlock(record->storage_handle);
  record->data_address = nullptr;
  record->flags &= ~kLocked;
}

LockScope::LockScope(BitmapHandle& record)
    : record_(record), lock_(record.structure_size == kCurrentForm ? record.lock : nullptr) {
  if (lock_ != nullptr) EnterCriticalSection(lock_);
  locked_here_ = (record.flags & kLocked) == 0;
  result_ = Lock(&record);
}

LockScope::~LockScope() {
  if (locked_here_) Unlock(&record_);
  if (lock_ != nullptr) LeaveCriticalSection(lock_);
}

std::span<PaletteEntry> PaletteOf(const BitmapHandle& record) {
  if (record.palette == nullptr) return {};
  return {record.palette, std::min(record.colours, PaletteSize(record.bits_per_pixel))};
}

PixelFormat FormatOf(const BitmapHandle& record) {
  return {record.bits_per_pixel, record.colour_order, PaletteOf(record)};
}

Geometry GeometryOf(const BitmapHandle& record) {
  return {record.width, record.height, record.bits_per_pixel, record.bytes_per_line,
          record.data_size};
}

int AllocatePalette(BitmapHandle& record) {
  GlobalBlock::Free(std::exchange(record.palette, nullptr));
  GlobalBlock block =
      GlobalBlock::Allocate(PaletteSize(record.bits_per_pixel) * sizeof(PaletteEntry));
  if (!block) return kOutOfMemory;
  record.palette = static_cast<PaletteEntry*>(block.Detach());
  return kSuccess;
}

bool IsValid(const BitmapHandle& record) {
  if (!IsStructureSize(record.structure_size) || (record.flags & kAllocated) == 0) return false;
  if (!IsSupportedDepth(record.bits_per_pixel)) return false;
  const auto geometry = MakeGeometry(record.width, record.height, record.bits_per_pixel);
  if (!geometry || geometry->data_size == 0 || geometry->bytes_per_line != record.bytes_per_line ||
      geometry->data_size != record.data_size) {
    return false;
  }
  if (record.view_perspective < 1 || record.view_perspective > 8) return false;
  if ((record.flags & (kDisk | kGlobalMemory)) != 0) return record.storage_handle != nullptr;
  return record.data_address != nullptr;
}

}  // namespace quillo::imaging
