#include "imaging/lifecycle/create.h"

#include <algorithm>

#include "base/system_owners.h"
#include "imaging/bitmap/kernel_settings.h"
#include "imaging/storage/storage.h"

namespace quillo::imaging {
namespace {

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

/// What Create does once the record is initialised.
int Furnish(BitmapHandle& record, const BitmapDescription& description) {
  int result = AllocateStorage(record, description.memory_type);
  if (result != kSuccess) return result;
  result = SetPalette(record, description.palette, description.bits_per_pixel == 0);
  if (result != kSuccess) return result;
  const uint32_t perspective = description.view_perspective;
  if (perspective > kMaxPerspective) return kInvalidArgument;
  record.view_perspective = perspective == 0 ? kTopRowFirst : perspective;
  if (description.memory_type != kMemoryCaller || description.caller_data == nullptr) {
    return kSuccess;
  }
  if (description.caller_data_size != record.data_size) return kInvalidArgument;
  record.data_address = static_cast<std::byte*>(description.caller_data);
  return kSuccess;
}

}  // namespace

int Create(BitmapHandle* record, const BitmapDescription& description) {
  const uint32_t bits = description.bits_per_pixel == 0 ? 8 : description.bits_per_pixel;
  int result =
      Init(record, description.structure_size, description.width, description.height, bits);
  if (result != kSuccess) return result;
  record->colour_order = description.colour_order;
  if (description.colour_order == kOrderExtended && bits != 24 && bits != 48) {
    return kUnsupportedDepth;
  }
  result = Furnish(*record, description);
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

int CreateLike(const BitmapHandle& model, uint32_t width, uint32_t height, BitmapHandle* fresh) {
  int result = Init(fresh, model.structure_size, width, height, model.bits_per_pixel);
  if (result != kSuccess) return result;
  fresh->colour_order = model.colour_order;
  fresh->view_perspective = model.view_perspective;
  result = AllocateStorage(*fresh, ThreadSettings().memory_type);
  if (result != kSuccess) return result;
  if (model.lookup8 != nullptr) std::copy_n(model.lookup8, kLevels8, fresh->lookup8);
  if (model.palette == nullptr) return kSuccess;
  fresh->colours = model.colours;
  result = AllocatePalette(*fresh);
  if (result == kSuccess) std::ranges::copy(PaletteOf(model), fresh->palette);
  return result;
}

}  // namespace quillo::imaging
