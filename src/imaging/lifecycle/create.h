#pragma once

#include "imaging/bitmap/bitmap_handle.h"
#include "imaging/bitmap/memory_type.h"

namespace quillo::imaging {

/// What Create makes a bitmap from.
struct BitmapDescription {
  uint32_t structure_size = kCurrentForm;
  uint32_t memory_type = kMemorySection;  // IsMemoryType
  uint32_t width = 0;                     // pixels
  uint32_t height = 0;                    // rows
  uint32_t bits_per_pixel = 0;            // 0: 8 bits, with a palette of greys
  uint32_t colour_order = kOrderPalette;
  const PaletteEntry* palette = nullptr;  // PaletteSize entries; null: the default colours
  uint32_t view_perspective = 0;          // 0: top row first
  void* caller_data = nullptr;            // rows for kMemoryCaller, which stay the caller's
  uint64_t caller_data_size = 0;          // bytes; must equal the bitmap's data size
};

/// Init, storage and palette. On failure nothing stays allocated.
///
/// Fails as Init and AllocateStorage do, with kUnsupportedDepth for kOrderExtended at other depths
/// than 24 and 48, and with kInvalidArgument for an unknown view perspective or a wrong size of the
/// caller's data.
int Create(BitmapHandle* record, const BitmapDescription& description);

/// Releases all that the record holds and leaves an empty record. A null record or one of a wrong
/// structure size is left alone.
void Free(BitmapHandle* record);

/// Frees a record at the end of the scope.
class BitmapScope {
 public:
  BitmapScope() = default;
  ~BitmapScope() { Free(&record_); }
  BitmapScope(const BitmapScope&) = delete;
  BitmapScope& operator=(const BitmapScope&) = delete;
  [[nodiscard]] BitmapHandle* Get() { return &record_; }
  BitmapHandle* operator->() { return &record_; }

 private:
  BitmapHandle record_{};
};

/// Makes `fresh` a bitmap like `model` (form, depth, colour order, row order, palette, levels) of
/// another size, with storage of the thread's default memory type. `fresh` must be freed even after
/// a failure, which is one of Init, AllocateStorage or AllocatePalette.
int CreateLike(const BitmapHandle& model, uint32_t width, uint32_t height, BitmapHandle* fresh);

}  // namespace quillo::imaging
