#include "imaging/bitmap/bitmap_handle.h"

#include <algorithm>
#include <cstring>

#include "base/system_owners.h"
#include "imaging/bitmap/kernel_settings.h"

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

RowFormat FormatOf(const BitmapHandle& record) {
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
  if (record.view_perspective < 1 || record.view_perspective > kMaxPerspective) return false;
  if ((record.flags & (kDisk | kGlobalMemory)) != 0) return record.storage_handle != nullptr;
  return record.data_address != nullptr;
}

}  // namespace quillo::imaging
