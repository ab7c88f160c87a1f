#include "imaging/resize.h"

#include "base/kernel_owners.h"
#include "imaging/kernel_settings.h"
#include "imaging/nearest.h"
#include "imaging/rows.h"
#include "imaging/storage.h"

namespace quillo::imaging {
namespace {

/// Rows of a bitmap, fetched and stored as a scaler wants them.
class RowPair {
 public:
  RowPair(const BitmapHandle& source, const BitmapHandle& destination)
      : source_(source), destination_(destination), scratch_(source.bytes_per_line) {}

  explicit operator bool() const { return static_cast<bool>(scratch_); }

  const std::byte* Fetch(uint32_t row) const {
    return BorrowRow(source_, row, {scratch_.As<std::byte>(), source_.bytes_per_line});
  }

  /// Turns the picture upside down when the row orders differ.
  [[nodiscard]] int Store(uint32_t row, Bytes data) const {
    const bool flip = source_.view_perspective != destination_.view_perspective;
    return StoreRow(destination_, flip ? destination_.height - 1 - row : row, data);
  }

 private:
  const BitmapHandle& source_;
  const BitmapHandle& destination_;
  HeapBlock scratch_;
};

}  // namespace

int ResizeInto(BitmapHandle* source, BitmapHandle* destination, uint32_t /*flags*/) {
  if (source == nullptr || destination == nullptr) return kInvalidArgument;
  if (!IsStructureSize(source->structure_size) || !IsStructureSize(destination->structure_size)) {
    return kWrongStructureSize;
  }
  if ((source->flags & destination->flags & kAllocated) == 0) return kNoStorage;
  if (source->bits_per_pixel != destination->bits_per_pixel ||
      source->colour_order != destination->colour_order) {
    return kInvalidArgument;
  }
  const LockScope source_lock(*source);
  const LockScope destination_lock(*destination);
  if (source_lock.Result() != kSuccess) return source_lock.Result();
  if (destination_lock.Result() != kSuccess) return destination_lock.Result();

  const RowPair rows(*source, *destination);
  const HeapBlock row(destination->bytes_per_line);
  const HeapBlock columns(size_t{destination->width} * sizeof(uint32_t));
  if (!rows || !row || !columns) return kOutOfMemory;
  const KernelSettings& settings = ThreadSettings();
  return ResizeNearest(
      GeometryOf(*source), GeometryOf(*destination), {columns.As<uint32_t>(), destination->width},
      {row.As<std::byte>(), destination->bytes_per_line},
      [&rows](uint32_t y) { return rows.Fetch(y); },
      [&rows](uint32_t y, Bytes data) { return rows.Store(y, data); },
      Progress(settings.status, settings.status_user, destination->height));
}

int SizeBitmap(BitmapHandle* record, int32_t new_width, int32_t new_height, uint32_t flags) {
  if (record == nullptr || (record->flags & kAllocated) == 0) return kInvalidArgument;
  if (!IsStructureSize(record->structure_size)) return kWrongStructureSize;
  const auto width = static_cast<uint32_t>(new_width);
  const auto height = static_cast<uint32_t>(new_height);
  if (width == record->width && height == record->height) return kSuccess;
  if (new_width < 1 || new_height < 1) return kInvalidArgument;
  BitmapScope fresh;
  int result = AllocateLike(*record, width, height, fresh.Get());
  if (result == kSuccess) result = ResizeInto(record, fresh.Get(), flags);
  if (result == kSuccess && record->attached_object != nullptr) {
    result = record->attached_object->Resize(width, height);
  }
  if (result == kSuccess) ExchangePixels(*record, *fresh.Get());
  return result;
}

}  // namespace quillo::imaging
