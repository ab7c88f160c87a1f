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

  /// The bits of a pixel.
  [[nodiscard]] uint32_t Value(int32_t x, int32_t y) const {
    const auto n = static_cast<uint32_t>(y * width + x);
    if (bit_count <= 8) return n % static_cast<uint32_t>(Colours());
    return bit_count == 16 ? n * 2111 & 0x7FFF : n * 1000003 & 0xFFFFFF;
  }

  /// What they mean, 0x00RRGGBB.
  [[nodiscard]] uint32_t Colour(int32_t x, int32_t y) const {
    const uint32_t value = Value(x, y);
    if (bit_count <= 8) return kPalette[value];
    if (bit_count != 16) return value;
    const auto channel = [value](int shift) {
      const uint32_t five = (value >> shift) & 31;
      return five << 3 | five >> 2;
    };
    return channel(10) << 16 | channel(5) << 8 | channel(0);
  }

  [[nodiscard]] size_t RowBytes() const {
    return static_cast<size_t>(records::DibRowBytes(static_cast<uint32_t>(width), bit_count));
  }

  /// Rows padded to double words.
  [[nodiscard]] Payload Bits(bool top_down) const {
    Payload bits(RowBytes() * static_cast<size_t>(height));
    for (int32_t y = 0; y < height; ++y) {
      std::byte* row =
          bits.data() + RowBytes() * static_cast<size_t>(top_down ? y : height - 1 - y);
      for (int32_t x = 0; x < width; ++x) {
        const uint32_t value = Value(x, y);
        const size_t bit = static_cast<size_t>(x) * bit_count;
        if (bit_count < 8) {
          row[bit / 8] |= static_cast<std::byte>(value << (8 - bit_count - bit % 8));
        } else {
          std::memcpy(row + bit / 8, &value, bit_count / 8);
        }
      }
    }
    return bits;
  }

  /// As records carry it.
  [[nodiscard]] Payload Packed() const {
    Payload table(records::PackedBitsOffset(bit_count) - sizeof(records::DibHeader));
    std::memcpy(table.data(), kPalette, Colours() * sizeof kPalette[0]);
    return PayloadOf(HeaderOf(width, height, bit_count), table, Bits(/*top_down=*/false));
  }
};

}  // namespace quillo::test
