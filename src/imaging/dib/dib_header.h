#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "base/bytes.h"
#include "imaging/pixels/geometry.h"
#include "imaging/pixels/palettes.h"

namespace quillo::imaging {

/// How the pixels of a DIB lie in its bits.
enum class DibLayout {
  kRows,             // rows padded to 4 bytes, as the bitmap stores them
  kBitFields,        // rows of 16- or 32-bit pixels with colour masks
  kRle8,             //
  kRle4,             //
  kPlanar420,        // Y, U, V; chroma halved both ways (I420, IYUV)
  kPlanar420VFirst,  // Y, V, U (YV12)
  kPlanar410,        // Y, V, U; chroma quartered both ways (YVU9, IF09)
  kYuy2,             // Y0 U Y1 V
  kPacked422,        // U Y0 V Y1 (UYVY, cyuv, Y42T)
  kPacked422YFirst,  // Y0 V Y1 U (YVYU)
  kPacked411,        // U0 Y0 V0 Y1 U4 Y2 V4 Y3 Y4 Y5 Y6 Y7 (Y41P, Y41T)
  kPacked211,        // Y0 U0 Y2 V0 for four pixels (Y211)
  kJpeg,             // known, but not decoded
};

constexpr bool IsYuv(DibLayout layout) {
  return layout >= DibLayout::kPlanar420 && layout <= DibLayout::kPacked211;
}

/// Red, green and blue masks of a pixel.
using ColourMasks = std::array<uint32_t, 3>;

/// What a DIB's header states.
struct DibDescription {
  DibLayout layout;
  uint32_t width;              // pixels, up to 2^31 - 1
  uint32_t height;             // rows, up to 2^31
  bool negative_height;        //
  uint32_t source_bits;        // per pixel, as stated
  uint32_t bits_per_pixel;     // of the bitmap that the DIB becomes
  uint32_t colours;            // 0 above 8 bits
  uint32_t colour_table;       // offset in the header
  uint32_t colour_entry;       // 3 or 4 bytes
  uint32_t image_size;         // biSizeImage
  int32_t x_pixels_per_metre;  // 0 when unknown
  int32_t y_pixels_per_metre;  // 0 when unknown
  ColourMasks masks;           // for kBitFields
};

/// Reads a BITMAPCOREHEADER or a BITMAPINFOHEADER (and its successors) with what follows it.
/// `header` may end anywhere: colour masks that it does not hold whole are the usual ones (5-5-5
/// and 8-8-8). Fails with kUnsupportedFormat (a DIB that is not converted) or kInvalidArgument (a
/// negative width).
int AnalyseDib(Bytes header, DibDescription* dib);

/// Bytes of the bits that the conversion reads; 0 for run-length streams, which may end anywhere.
uint64_t SourceSize(const DibDescription& dib);

/// Fills `palette` (dib.colours entries) from the colour table. Entries that `header` does not hold
/// are black. A header with fewer than two entries counts as one without a table, whose bitmap
/// shows grey levels.
void ReadColourTable(Bytes header, const DibDescription& dib, std::span<PaletteEntry> palette);

/// Pixels per metre to dots per inch, truncating towards zero.
constexpr int32_t DotsPerInch(int32_t pixels_per_metre) {
  return static_cast<int32_t>((int64_t{pixels_per_metre} * 254 + 5000) / 10000);
}

}  // namespace quillo::imaging
