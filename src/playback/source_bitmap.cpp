#include "playback/source_bitmap.h"

#include "capture/records/packed_bitmap.h"
#include "imaging/dib/convert_dib.h"
#include "imaging/scaling/resize.h"

namespace quillo {

bool TakePixels(PlaybackContext& context, const records::DibHeader& header) {
  if (!records::IsRunLength(header.compression)) return true;
  const uint64_t pixels = records::PixelCount(header.width, header.height);
  if (pixels > context.run_length_pixels_left) return false;
  context.run_length_pixels_left -= pixels;
  return true;
}

bool SourceBitmap::Load(PlaybackContext& context, Bytes payload, uint32_t offset) {
  const auto dib = records::LocatePackedDib(payload, offset);
  if (!dib || !TakePixels(context, dib->info.header)) return false;
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
  dc_ = imaging::PresentAsDibSection(bitmap_.Get());
  return dc_.Get().dc;
}

}  // namespace quillo
