#include "host/engine/picture_objects.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "base/bytes.h"

namespace quillo::host {
namespace {

struct Masks {
  uint32_t red, green, blue;
  bool operator==(const Masks&) const = default;
};

constexpr Masks kUsual16{0x7C00, 0x03E0, 0x001F};
constexpr Masks kUsual32{0xFF0000, 0x00FF00, 0x0000FF};

/// The masks in force; all zero for a picture without any.
Masks MasksOf(const BitmapSource& picture) {
  if (picture.bits_per_pixel != 16 && picture.bits_per_pixel != 32) return {};
  const Masks own{picture.red_mask, picture.green_mask, picture.blue_mask};
  if (own != Masks{}) return own;
  return picture.bits_per_pixel == 16 ? kUsual16 : kUsual32;
}

/// One channel scaled to 0 to 255; a mask of no bits gives 0.
uint32_t Channel(uint32_t pixel, uint32_t mask) {
  if (mask == 0) return 0;
  const int shift = std::countr_zero(mask);
  const uint64_t most = mask >> shift;
  return static_cast<uint32_t>(((pixel & mask) >> shift) * uint64_t{255} / most);
}

/// The rows of a picture with unusual masks as 32-bit pixels, in the same order.
std::vector<std::byte> ToUsualMasks(const BitmapSource& picture, const Masks& masks) {
  const size_t width = static_cast<size_t>(picture.width);
  const size_t height = static_cast<size_t>(picture.height);
  const size_t pixel_bytes = picture.bits_per_pixel / 8;
  std::vector<std::byte> converted(width * height * 4);
  for (size_t y = 0; y < height; ++y) {
    for (size_t x = 0; x < width; ++x) {
      const size_t offset = y * picture.Stride() + x * pixel_bytes;
      const uint32_t pixel = pixel_bytes == 2 ? LoadOrZero<uint16_t>(picture.bits, offset)
                                              : LoadOrZero<uint32_t>(picture.bits, offset);
      const uint32_t rgb = Channel(pixel, masks.red) << 16 | Channel(pixel, masks.green) << 8 |
                           Channel(pixel, masks.blue);
      std::memcpy(converted.data() + (y * width + x) * 4, &rgb, 4);
    }
  }
  return converted;
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
  const SIZEL size{picture.width, picture.height};
  const auto add_surface = [&](ULONG format, const std::vector<std::byte>& bits, size_t stride) {
    // The public structure has no const; drivers read a source and never write it.
    surface_.emplace(size, format, picture.top_down, const_cast<std::byte*>(bits.data()),
                     static_cast<ULONG>(bits.size()), static_cast<LONG>(stride));
  };

  const Masks masks = MasksOf(picture);
  if (masks != Masks{} && masks != kUsual16 && masks != kUsual32) {
    converted_ = ToUsualMasks(picture, masks);
    add_surface(BMF_32BPP, converted_, static_cast<size_t>(picture.width) * 4);
  } else if (const size_t needed = picture.Stride() * static_cast<size_t>(picture.height);
             picture.run_length || picture.bits.size() == needed) {
    add_surface(FormatOf(picture), picture.bits, picture.Stride());
  } else {
    converted_ = picture.bits;
    converted_.resize(needed);
    add_surface(FormatOf(picture), converted_, picture.Stride());
  }

  if (picture.bits_per_pixel <= 8) {
    std::vector<ULONG> vector(picture.palette.begin(), picture.palette.end());
    vector.resize(size_t{1} << picture.bits_per_pixel);
    translation_.emplace(std::move(vector));
  } else {
    translation_.emplace();
  }
}

}  // namespace quillo::host
