#include "host/engine/picture_objects.h"

#include "host/engine/channels.h"
#include "host/engine/raster.h"

namespace quillo::host {
namespace {

/// Whether drivers read the pixels correctly without knowing the masks.
bool HasDefaultMasks(const BitmapSource& picture) {
  return MasksOf(picture) == (picture.bits_per_pixel == 16 ? kDefault16 : kDefault32);
}

ULONG FormatOf(const BitmapSource& picture) {
  if (picture.run_length) return picture.bits_per_pixel == 4 ? BMF_4RLE : BMF_8RLE;
  switch (picture.bits_per_pixel) {
    case 1:
      return BMF_1BPP;
    case 4:
      return BMF_4BPP;
    case 8:
      return BMF_8BPP;
    case 16:
      return BMF_16BPP;
    case 24:
      return BMF_24BPP;
    default:
      return BMF_32BPP;
  }
}

}  // namespace

PictureObjects::PictureObjects(const BitmapSource& picture) {
  const BitmapSource* used = &picture;
  size_t byte_count = picture.Stride() * static_cast<size_t>(picture.height);
  if (picture.run_length) {
    byte_count = picture.bits.size();
  } else if (picture.bits_per_pixel > 8 && !HasDefaultMasks(picture)) {
    converted_ = CopyArgb(picture, {0, 0, picture.width, picture.height}, false, false, {});
    used = &converted_;
    byte_count = converted_.bits.size();
  } else if (picture.bits.size() < byte_count) {
    converted_ = picture;
    converted_.bits.resize(byte_count);
    used = &converted_;
  }
  // The public structure has no const; drivers only read a source.
  surface_.emplace(SIZEL{used->width, used->height}, FormatOf(*used), used->top_down,
                   const_cast<std::byte*>(used->bits.data()), static_cast<ULONG>(byte_count),
                   static_cast<LONG>(used->Stride()));

  if (picture.bits_per_pixel <= 8) {
    std::vector<ULONG> vector(picture.palette.begin(), picture.palette.end());
    vector.resize(size_t{1} << picture.bits_per_pixel);
    translation_.emplace(std::move(vector));
  } else {
    translation_.emplace();
  }
}

}  // namespace quillo::host
