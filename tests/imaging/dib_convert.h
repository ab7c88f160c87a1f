#pragma once

#include <cstddef>
#include <vector>

#include "imaging/dib/dib_header.h"
#include "imaging/dib/dib_rows.h"
#include "imaging/pixels/result.h"

namespace quillo::imaging {

/// A DIB converted in plain memory: what the kernel does with it, without its storage.
struct ConvertedDib {
  int result = 0;
  DibDescription dib{};
  Geometry geometry{};
  std::vector<PaletteEntry> palette;
  std::vector<std::byte> rows;  // in storage order
};

/// Bitmaps and rows above `largest` bytes are refused with kOutOfMemory.
inline ConvertedDib ConvertInMemory(Bytes header, Bytes bits, uint64_t largest = 256 << 20) {
  ConvertedDib out;
  out.result = AnalyseDib(header, &out.dib);
  if (out.result != kSuccess) return out;
  out.result = kInvalidArgument;
  if (bits.size() < SourceSize(out.dib)) return out;
  const auto geometry = MakeGeometry(out.dib.width, out.dib.height, out.dib.bits_per_pixel);
  out.result = kOutOfMemory;
  if (!geometry || geometry->data_size > largest || geometry->bytes_per_line > largest) return out;
  out.geometry = *geometry;
  out.palette.resize(out.dib.colours);
  ReadColourTable(header, out.dib, out.palette);
  out.rows.resize(geometry->data_size);
  std::vector<std::byte> scratch(geometry->bytes_per_line);
  out.result = ConvertDibRows(out.dib, bits, scratch, [&](uint32_t row, Bytes data) {
    if (row >= geometry->height || data.size() != geometry->bytes_per_line) return -9999;
    std::ranges::copy(
        data, out.rows.begin() + static_cast<ptrdiff_t>(uint64_t{row} * geometry->bytes_per_line));
    return kSuccess;
  });
  return out;
}

}  // namespace quillo::imaging
