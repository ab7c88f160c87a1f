#include "host/engine/raster.h"

#include <algorithm>

#include "base/bytes.h"
#include "host/engine/channels.h"

namespace quillo::host {
namespace {

/// Where pixel `i` of a stretch of `length` target pixels (negative: mirrored) starting at `start`
/// comes from, in a source span of `count` pixels starting at `first`.
LONG SourceOf(LONG i, LONG start, LONG length, LONG first, LONG count) {
  const double t = (i - start + 0.5) / length;
  const LONG offset = static_cast<LONG>(t * count);
  return first + (offset < 0 ? 0 : offset >= count ? count - 1 : offset);
}

}  // namespace

PixelReader::PixelReader(const BitmapSource& picture) : picture_(picture) {}

uint32_t PixelReader::Raw(LONG x, LONG y) const {
  const LONG row = picture_.top_down ? y : picture_.height - 1 - y;
  const size_t start = static_cast<size_t>(row) * picture_.Stride();
  const size_t bits = picture_.bits_per_pixel;
  const size_t bit = static_cast<size_t>(x) * bits;
  const size_t offset = start + bit / 8;
  if (bits == 32) return LoadOrZero<uint32_t>(picture_.bits, offset);
  if (bits == 24) {
    return LoadOrZero<uint16_t>(picture_.bits, offset) |
           uint32_t{LoadOrZero<uint8_t>(picture_.bits, offset + 2)} << 16;
  }
  if (bits == 16) return LoadOrZero<uint16_t>(picture_.bits, offset);
  const uint32_t byte = LoadOrZero<uint8_t>(picture_.bits, offset);
  return byte >> (8 - bits - bit % 8) & ((1u << bits) - 1);
}

uint32_t PixelReader::Colour(LONG x, LONG y) const {
  const uint32_t raw = Raw(x, y);
  if (picture_.bits_per_pixel <= 8) {
    return raw < picture_.palette.size() ? picture_.palette[raw] & 0xFFFFFF : 0;
  }
  return ColourOf(raw, MasksOf(picture_));
}

BitmapSource MakeArgb(LONG width, LONG height) {
  BitmapSource picture;
  picture.width = width;
  picture.height = height;
  picture.bits_per_pixel = 32;
  picture.top_down = true;
  picture.bits.resize(picture.Stride() * static_cast<size_t>(height));
  return picture;
}

BitmapSource CopyArgb(const BitmapSource& picture, const RECTL& rect, bool mirror_x, bool mirror_y,
                      std::optional<uint32_t> key) {
  const PixelReader pixels(picture);
  const LONG width = rect.right - rect.left, height = rect.bottom - rect.top;
  BitmapSource copy = MakeArgb(width, height);
  for (LONG y = 0; y < height; ++y) {
    for (LONG x = 0; x < width; ++x) {
      uint32_t colour = pixels.Colour(rect.left + (mirror_x ? width - 1 - x : x),
                                      rect.top + (mirror_y ? height - 1 - y : y));
      if (key) colour = (colour & ~kOpaque) == *key ? 0 : colour | kOpaque;
      SetPixel(copy, x, y, colour);
    }
  }
  return copy;
}

BitmapSource StretchPart(const BitmapSource& source, const RECTL& rect, const RECTL& target,
                         const RECTL& area) {
  const PixelReader pixels(source);
  BitmapSource stretched;
  stretched.width = area.right - area.left;
  stretched.height = area.bottom - area.top;
  stretched.bits_per_pixel = std::min<uint16_t>(source.bits_per_pixel, 24);
  if (stretched.bits_per_pixel > 8) stretched.bits_per_pixel = 24;
  stretched.palette = source.palette;
  stretched.top_down = true;
  stretched.bits.resize(stretched.Stride() * static_cast<size_t>(stretched.height));

  std::vector<LONG> columns;
  for (LONG x = 0; x < stretched.width; ++x) {
    columns.push_back(SourceOf(area.left + x, target.left, target.right - target.left, rect.left,
                               rect.right - rect.left));
  }
  const bool indexed = stretched.bits_per_pixel <= 8;
  for (LONG y = 0; y < stretched.height; ++y) {
    const LONG from_y = SourceOf(area.top + y, target.top, target.bottom - target.top, rect.top,
                                 rect.bottom - rect.top);
    std::byte* row = stretched.bits.data() + static_cast<size_t>(y) * stretched.Stride();
    for (size_t x = 0; x < columns.size(); ++x) {
      if (!pixels.Holds(columns[x], from_y)) continue;
      if (indexed) {
        const size_t bit = x * stretched.bits_per_pixel;
        const size_t shift = 8 - stretched.bits_per_pixel - bit % 8;
        row[bit / 8] |= static_cast<std::byte>(pixels.Raw(columns[x], from_y) << shift);
      } else {
        const uint32_t colour = pixels.Colour(columns[x], from_y);
        std::memcpy(row + x * 3, &colour, 3);
      }
    }
  }
  return stretched;
}

BitmapSource Transpose(const BitmapSource& picture, const RECTL& rect) {
  const PixelReader pixels(picture);
  const LONG width = rect.bottom - rect.top, height = rect.right - rect.left;
  BitmapSource transposed = MakeArgb(width, height);
  for (LONG y = 0; y < height; ++y) {
    for (LONG x = 0; x < width; ++x) {
      if (!pixels.Holds(rect.left + y, rect.top + x)) continue;
      SetPixel(transposed, x, y, pixels.Colour(rect.left + y, rect.top + x));
    }
  }
  return transposed;
}

ExpandedRuns ExpandRuns(const BitmapSource& picture) {
  ExpandedRuns result;
  BitmapSource& expanded = result.picture;
  expanded.width = picture.width;
  expanded.height = picture.height;
  expanded.bits_per_pixel = picture.bits_per_pixel;
  expanded.palette = picture.palette;
  expanded.bits.assign(expanded.Stride() * static_cast<size_t>(picture.height), std::byte{});

  const bool nibbles = picture.bits_per_pixel == 4;
  LONG x = 0, y = 0;  // rows from the bottom
  const auto put = [&](uint8_t index) {
    if (x < picture.width) {
      std::byte& byte = expanded.bits[static_cast<size_t>(y) * expanded.Stride() +
                                      static_cast<size_t>(nibbles ? x / 2 : x)];
      byte = !nibbles     ? std::byte{index}
             : x % 2 == 0 ? (byte & std::byte{0x0F}) | std::byte{static_cast<uint8_t>(index << 4)}
                          : (byte & std::byte{0xF0}) | std::byte{index};
      ++x;
    } else {
      result.overflows = true;
    }
  };
  size_t at = 0;
  bool ended = false;
  const auto next = [&] { return LoadOrZero<uint8_t>(picture.bits, at++); };
  while (!ended && at < picture.bits.size() && y < picture.height) {
    const uint8_t count = next(), value = next();
    if (count != 0) {  // one colour repeated, or two alternating
      for (int i = 0; i < count; ++i) {
        put(!nibbles ? value : i % 2 == 0 ? value >> 4 : value & 0x0F);
      }
    } else if (value == 0) {  // end of the row
      x = 0;
      ++y;
    } else if (value == 1) {  // end of the picture
      ended = true;
    } else if (value == 2) {  // a step to the right and up
      x = std::min<LONG>(picture.width, x + next());
      y += next();
    } else {  // literal pixels, in whole 16-bit words
      const size_t start = at;
      for (int i = 0; i < value; ++i) {
        if (!nibbles) {
          put(next());
        } else if (i % 2 == 0) {
          put(LoadOrZero<uint8_t>(picture.bits, at) >> 4);
        } else {
          put(next() & 0x0F);
        }
      }
      const size_t bytes = nibbles ? (value + 1u) / 2 : value;
      at = start + (bytes + 1) / 2 * 2;
    }
  }
  // Some writers omit the end of the last row and of the picture.
  const bool complete =
      ended || y >= picture.height || (y == picture.height - 1 && x >= picture.width);
  result.is_cut = !complete || at > picture.bits.size() + 1;
  return result;
}

ReadablePicture::ReadablePicture(const BitmapSource& picture) : used_(&picture) {
  if (!picture.run_length) return;
  expanded_ = ExpandRuns(picture).picture;
  used_ = &expanded_;
}

}  // namespace quillo::host
