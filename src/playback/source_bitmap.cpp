#include "playback/source_bitmap.h"

#include "capture/records/packed_bitmap.h"
#include "imaging/dib/convert_dib.h"
#include "imaging/scaling/resize.h"

namespace quillo {

bool SourceBitmap::Load(Bytes payload, uint32_t offset) {
  const auto dib = records::LocatePackedDib(payload, offset);
  if (!dib) return false;
  return imaging::ConvertFromDib(bitmap_.Get(), imaging::kCurrentForm,
                                 records::PackedHeadBytes(dib->info),
                                 dib->bits) == imaging::kSuccess;
}

bool SourceBitmap::Reduce(BitmapLimits limits) {
  const auto width = static_cast<int32_t>(bitmap_->width);
  const auto height = static_cast<int32_t>(bitmap_->height);
  scale_ = FindReduction(width, height, limits);
  return imaging::SizeBitmap(bitmap_.Get(), Scaled(width), Scaled(height), 0) == imaging::kSuccess;
}

HDC SourceBitmap::Present() {
  dc_.Reset(imaging::PresentAsDibSection(bitmap_.Get()));
  return dc_.Get();
}

}  // namespace quillo
