#pragma once

#include <cstdint>
#include <optional>

#include "base/bytes.h"
#include "capture/records/packed_dib.h"

// How a surface becomes a packed bitmap; packed_dib.h reads them.
namespace quillo::records {

/// What a surface format (BMF_*) means in a header.
struct PixelFormat {
  uint16_t bit_count;
  DibCompression compression;
};

/// Nothing for the formats that have no bit count, and for unknown numbers.
std::optional<PixelFormat> FindPixelFormat(uint32_t surface_format);

/// Bytes of the packed bitmap of a surface whose pixel bits take `bits_size` bytes; nothing when
/// its format cannot be packed or the size does not fit.
std::optional<uint32_t> PackedSize(uint32_t surface_format, uint32_t bits_size);

/// Dots per inch; 0 = no device at hand.
struct DotsPerInch {
  uint32_t x;
  uint32_t y;
};

/// Header and an empty colour table.
DibInfo MakePackedHead(PixelFormat format, int32_t width, int32_t height, DotsPerInch dpi);

/// Gives a mask the two colours that masks carry. Playback replaces them before use.
void SetMaskColours(DibInfo& head);

/// The bytes in front of the pixel bits.
Bytes PackedHeadBytes(const DibInfo& head);

/// The pixel bits of a surface in memory.
struct SurfaceBits {
  Bytes bits;
  uint32_t row_size;  // bytes
  uint32_t row_count;
  bool top_down;

  /// Whether rows that have to be turned round lie inside the bits.
  [[nodiscard]] bool Fits() const {
    return !top_down || uint64_t{row_size} * row_count <= bits.size();
  }
};

/// Calls `take` with pieces of a surface's bits, in the order that makes them bottom-up: in one
/// piece as they stand, or row by row from the last one when they are top-down, and then what is
/// left behind the rows. The pieces add up to `bits`, which must fit.
template <typename Take>
void ForEachPiece(const SurfaceBits& surface, Take take) {
  Bytes rest = surface.bits;
  if (surface.top_down && surface.row_size != 0) {
    const size_t rows_size = size_t{surface.row_size} * surface.row_count;
    for (size_t end = rows_size; end != 0; end -= surface.row_size) {
      take(surface.bits.subspan(end - surface.row_size, surface.row_size));
    }
    rest = rest.subspan(rows_size);
  }
  if (!rest.empty()) take(rest);
}

}  // namespace quillo::records
