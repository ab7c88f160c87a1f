#pragma once

#include <cstdint>
#include <span>

#include "base/bytes.h"
#include "imaging/pixels/palettes.h"

namespace quillo::imaging {

// Colour orders.
constexpr uint32_t kOrderPalette = 0;   // at most 8 bits
constexpr uint32_t kOrderRedFirst = 0;  // above 8 bits
constexpr uint32_t kOrderColour = 1;    // blue first
constexpr uint32_t kOrderGrey = 2;      // one channel
constexpr uint32_t kOrderExtended = 5;  // 24 and 48 bits only; stored and shown blue first

/// How the pixels of a row are to be read.
struct RowFormat {
  uint32_t bits;                          // per pixel
  uint32_t order;                         // kOrder...
  std::span<const PaletteEntry> palette;  // empty above 8 bits
};

/// A pixel of any format: channels from 0 to 65535.
struct Colour16 {
  uint16_t blue;
  uint16_t green;
  uint16_t red;
  uint16_t alpha;  // 0 where the format has none
};

constexpr PaletteEntry ToEntry(Colour16 colour) {
  return {static_cast<uint8_t>(colour.blue >> 8), static_cast<uint8_t>(colour.green >> 8),
          static_cast<uint8_t>(colour.red >> 8), 0};
}

/// Reads pixels `first` to `first` + colours.size() - 1 of a row. Indexes beyond the palette are
/// black; a 16-bit colour pixel has 5 bits a channel.
void DecodeRow(const RowFormat& format, const std::byte* row, uint32_t first,
               std::span<Colour16> colours);

/// Writes the pixels from the row's start on, rounded to the format's levels or, in a format with a
/// palette, to the nearest entry.
void EncodeRow(const RowFormat& format, std::span<const Colour16> colours, std::byte* row);

}  // namespace quillo::imaging
