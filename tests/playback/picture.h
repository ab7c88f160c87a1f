#pragma once

#include <cstdint>
#include <cstring>
#include <iterator>

#include "capture/records/packed_dib.h"
#include "playback/page.h"

namespace quillo::test {

inline records::DibHeader HeaderOf(int32_t width, int32_t height, uint16_t bit_count) {
  return {40, width, height, 1, bit_count, records::kDibRgb, 0, 0, 0, 0, 0};
}

/// A small picture of known content in any depth. (0, 0) is its top left pixel.
struct Picture {
  static constexpr uint32_t kPalette[] = {0x102030, 0xFF0000, 0x00FF00,
                                          0x0000FF, 0xFFFF00, 0x123456};

  uint16_t bit_count;  // 1, 4, 8, 16, 24 or 32
  int32_t width = 5;
  int32_t height = 3;

  [[nodiscard]] size_t Colours() const {
    return bit_count == 1 ? 2 : bit_count <= 8 ? std::size(kPalette) : 0;
  }

  /// Rows padded to double words, bottom row first. The value of a pixel is a multiple of its
  /// number.
  [[nodiscard]] Payload Bits() const {
    const auto row_bytes =
        static_cast<size_t>(records::DibRowBytes(static_cast<uint32_t>(width), bit_count));
    Payload bits(row_bytes * static_cast<size_t>(height));
    for (int32_t i = 0; i < width * height; ++i) {
      std::byte* row = bits.data() + row_bytes * static_cast<size_t>(height - 1 - i / width);
      const size_t bit = static_cast<size_t>(i % width) * bit_count;
      const auto n = static_cast<uint32_t>(i);
      const uint32_t value = bit_count <= 8    ? n % static_cast<uint32_t>(Colours())
                             : bit_count == 16 ? n * 2111 & 0x7FFF
                                               : n * 1000003 & 0xFFFFFF;
      if (bit_count < 8) {
        row[bit / 8] |= static_cast<std::byte>(value << (8 - bit_count - bit % 8));
      } else {
        std::memcpy(row + bit / 8, &value, bit_count / 8);
      }
    }
    return bits;
  }

  /// As records carry it.
  [[nodiscard]] Payload Packed() const {
    Payload table(records::PackedBitsOffset(bit_count) - sizeof(records::DibHeader));
    std::memcpy(table.data(), kPalette, Colours() * sizeof kPalette[0]);
    return PayloadOf(HeaderOf(width, height, bit_count), table, Bits());
  }
};

}  // namespace quillo::test
