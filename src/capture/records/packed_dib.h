#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "base/bytes.h"
#include "base/dib.h"

// The packed bitmap that records carry: a header of 40 bytes, a colour table, the bits.
namespace quillo::records {

/// A BITMAPINFOHEADER.
struct DibHeader {
  uint32_t size;   // 40
  int32_t width;   // pixels
  int32_t height;  // rows; positive = bottom-up, negative = top-down
  uint16_t planes;
  uint16_t bit_count;
  uint32_t compression;  // DibCompression
  uint32_t size_image;   // bytes of the bits; 0 is usual for uncompressed ones
  int32_t x_pels_per_metre;
  int32_t y_pels_per_metre;
  uint32_t colours_used;  // 0 = all that the depth allows
  uint32_t colours_important;
};
static_assert(sizeof(DibHeader) == 40);

enum DibCompression : uint32_t { kDibRgb = 0, kDibRle8 = 1, kDibRle4 = 2, kDibBitFields = 3 };

/// Bytes from the header's start to the bits. The depth alone decides: a full colour table up to 8
/// bits, one double word above, whatever compression and colour count are.
constexpr size_t PackedBitsOffset(uint32_t bit_count) {
  return sizeof(DibHeader) + 4 * (bit_count <= 8 ? size_t{1} << bit_count : 1);
}

/// Bytes of a row, padded to double words.
constexpr uint64_t DibRowBytes(uint32_t width, uint32_t bit_count) {
  return DibStride(width, bit_count);
}

/// Bytes of all rows of uncompressed bits. Nothing for a width below 1, no rows, a depth other than
/// 1, 4, 8, 16, 24 and 32, and sizes beyond 64 bits.
std::optional<uint64_t> DibBitsBytes(const DibHeader& header);

/// Most pixels of a source. The bits of an uncompressed one are there, but 1-bit sources are
/// converted to 24 bits; a few bytes of a run-length one stand for any number of pixels.
inline constexpr uint64_t kMaxSourcePixels = 1 << 28;
inline constexpr uint64_t kMaxRunLengthPixels = 1 << 26;

/// Whether the bits are run-length codes, so that their size does not bound the pixels.
constexpr bool IsRunLength(uint32_t compression) {
  return compression == kDibRle8 || compression == kDibRle4;
}

/// Width times rows, whatever the sign of the height.
constexpr uint64_t PixelCount(int32_t width, int32_t height) {
  const auto magnitude = [](int64_t value) {
    return static_cast<uint64_t>(value < 0 ? -value : value);
  };
  return magnitude(width) * magnitude(height);
}

constexpr bool HasBoundedPixels(uint32_t compression, int32_t width, int32_t height) {
  return PixelCount(width, height) <=
         (IsRunLength(compression) ? kMaxRunLengthPixels : kMaxSourcePixels);
}

/// Header and colour table in one piece, as GDI takes them.
struct DibInfo {
  DibHeader header;
  uint32_t colours[256];  // 0x00RRGGBB; only the first 2^bit_count count, none above 8 bits
};

/// A packed DIB inside a record.
struct PackedDib {
  DibInfo info;  // a copy whose colours_used fits the table; run-length: size_image is bits.size()
  Bytes bits;    // in place, unaligned; for run-length bits, the rest of the block
};

/// Finds the DIB that begins `offset` bytes into `block` and ends within it. Nothing when the
/// header is invalid (a size other than 40, a depth or compression that no record carries, more
/// pixels than the maximum), or when the bits would begin or end outside the block.
std::optional<PackedDib> LocatePackedDib(Bytes block, size_t offset);

}  // namespace quillo::records
