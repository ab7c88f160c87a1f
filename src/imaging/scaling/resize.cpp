#include "imaging/scaling/resize.h"

#include <algorithm>

#include "base/system_owners.h"
#include "imaging/bitmap/kernel_settings.h"
#include "imaging/lifecycle/create.h"
#include "imaging/scaling/area.h"
#include "imaging/scaling/nearest.h"
#include "imaging/scaling/resample.h"
#include "imaging/storage/rows.h"
#include "imaging/storage/storage.h"

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

  [[nodiscard]] std::byte* Place(uint32_t row) const {
    return RowAddress(destination_, Placed(row));
  }

  [[nodiscard]] int Store(uint32_t row, Bytes data) const {
    return StoreRow(destination_, Placed(row), data);
  }

 private:
  /// Turns the picture upside down when the row orders differ.
  [[nodiscard]] uint32_t Placed(uint32_t row) const {
    const bool flip = source_.view_perspective != destination_.view_perspective;
    return flip ? destination_.height - 1 - row : row;
  }

  const BitmapHandle& source_;
  const BitmapHandle& destination_;
  HeapBlock scratch_;
};

enum class Method { kNearest, kArea, kResample, kEnlarge };

/// kResizeArea overrides kResizeResample, which overrides kResizeSmooth.
Method ChooseMethod(const BitmapHandle& source, const BitmapHandle& destination, uint32_t flags) {
  if ((flags & kResizeArea) != 0 && source.bits_per_pixel == 1) return Method::kArea;
  if ((flags & kResizeResample) != 0) return Method::kResample;
  if ((flags & kResizeSmooth) == 0) return Method::kNearest;
  const bool grows = destination.width > source.width || destination.height > source.height;
  return grows ? Method::kEnlarge : Method::kResample;
}

/// The flags that count for a bitmap that is resized in place: for a black and white one,
/// kResizeSmooth overrides kResizeArea, which overrides kResizeResample.
uint32_t FlagsInPlace(const BitmapHandle& record, uint32_t flags) {
  if ((flags & kResizeArea) == 0) return flags;
  const bool black_and_white =
      record.bits_per_pixel == 1 && TestTwoColours(PaletteOf(record)) != TwoColours::kOther;
  if (!black_and_white) return flags & ~kResizeArea;
  return (flags & kResizeSmooth) != 0 ? kResizeSmooth : kResizeArea;
}

size_t WorkSize(Method method, const Geometry& source, const Geometry& destination) {
  switch (method) {
    case Method::kNearest:
      return size_t{destination.width} * sizeof(uint32_t);
    case Method::kArea:
      return size_t{destination.width} * sizeof(uint64_t);
    case Method::kResample:
    case Method::kEnlarge:
      break;
  }
  return ResampleWorkSize(source, destination);
}

int Scale(Method method, const BitmapHandle& source, const BitmapHandle& destination) {
  const Geometry from = GeometryOf(source);
  const Geometry to = GeometryOf(destination);
  const RowPair rows(source, destination);
  const HeapBlock row(to.bytes_per_line);
  const size_t work_size = WorkSize(method, from, to);
  const HeapBlock work(work_size);
  if (!rows || !row || !work) return kOutOfMemory;
  const auto fetch = [&rows](uint32_t y) { return rows.Fetch(y); };
  const auto store = [&rows](uint32_t y, Bytes data) { return rows.Store(y, data); };
  const KernelSettings& settings = ThreadSettings();
  const Scaling scaling{.source = from,
                        .destination = to,
                        .fetch = fetch,
                        .store = store,
                        .row = {row.As<std::byte>(), to.bytes_per_line},
                        .progress = {settings.status, settings.status_user, to.height}};
  switch (method) {
    case Method::kNearest:
      return ResizeNearest(scaling, [&rows](uint32_t y) { return rows.Place(y); },
                           {work.As<uint32_t>(), to.width});
    case Method::kArea:
      return ScaleByArea(scaling, AreaRule::kMajority, {work.As<uint64_t>(), to.width});
    case Method::kResample:
    case Method::kEnlarge:
      break;
  }
  const CubicFilter filter =
      method == Method::kEnlarge ? CubicFilter::kCatmullRom : CubicFilter::kMitchell;
  return Resample(scaling, filter, FormatOf(source), {work.As<std::byte>(), work_size});
}

}  // namespace

int ResizeInto(BitmapHandle* source, BitmapHandle* destination, uint32_t flags) {
  if (source == nullptr || destination == nullptr) return kInvalidArgument;
  if (!IsStructureSize(source->structure_size) || !IsStructureSize(destination->structure_size)) {
    return kWrongStructureSize;
  }
  if ((source->flags & destination->flags & kAllocated) == 0) return kNoStorage;
  if (source->bits_per_pixel != destination->bits_per_pixel ||
      source->colour_order != destination->colour_order) {
    return kInvalidArgument;
  }
  // In the order of their addresses, so that two threads with the same bitmaps cannot deadlock.
  const auto [low, high] = std::minmax(source, destination);
  const LockScope first(*low);
  const LockScope second(*high);
  if (first.Result() != kSuccess) return first.Result();
  if (second.Result() != kSuccess) return second.Result();
  return Scale(ChooseMethod(*source, *destination, flags), *source, *destination);
}

int SizeBitmap(BitmapHandle* record, int32_t new_width, int32_t new_height, uint32_t flags) {
  if (record == nullptr || (record->flags & kAllocated) == 0) return kInvalidArgument;
  if (!IsStructureSize(record->structure_size)) return kWrongStructureSize;
  const auto width = static_cast<uint32_t>(new_width);
  const auto height = static_cast<uint32_t>(new_height);
  if (width == record->width && height == record->height) return kSuccess;
  if (new_width < 1 || new_height < 1) return kInvalidArgument;
  BitmapScope fresh;
  int result = CreateLike(*record, width, height, fresh.Get());
  if (result == kSuccess) result = ResizeInto(record, fresh.Get(), FlagsInPlace(*record, flags));
  if (result == kSuccess && record->attached_object != nullptr) {
    result = record->attached_object->Resize(width, height);
  }
  if (result == kSuccess) ExchangePixels(*record, *fresh.Get());
  return result;
}

}  // namespace quillo::imaging
