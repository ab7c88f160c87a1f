#include "imaging/dib/bit_fields.h"

#include <bit>
#include <cstring>

namespace quillo::imaging {

BitFieldConverter::BitFieldConverter(uint32_t bits, const ColourMasks& masks) : bits_(bits) {
  const uint32_t channel_bits = bits == 16 ? 5 : 8;
  const uint32_t result_max = (1u << channel_bits) - 1;
  is_usual_ = masks ==
              (bits == 16 ? ColourMasks{0x7C00, 0x3E0, 0x1F} : ColourMasks{0xFF0000, 0xFF00, 0xFF});
  for (uint32_t i = 0; i < 3; ++i) {
    Channel& channel = channels_[i];
    channel.mask = bits == 16 ? masks[i] & 0xFFFF : masks[i];
    channel.shift = 0;
    channel.shifted = {};
    if (channel.mask == 0) continue;
    const auto top = static_cast<uint32_t>(std::bit_width(channel.mask));
    channel.shift = static_cast<uint32_t>(std::countr_zero(channel.mask));
    if (top - channel.shift > 8) channel.shift = top - 8;
    const uint32_t max = channel.mask >> channel.shift;
    for (uint32_t value = 0; value <= max; ++value) {
      const uint32_t scaled = (value * result_max + max / 2) / max;
      channel.shifted[value] = scaled << (channel_bits * (2 - i));
    }
  }
}

template <typename Pixel>
void BitFieldConverter::ConvertPixels(Bytes source, uint32_t width, MutableBytes row) const {
  const auto result = [this](uint32_t pixel, size_t i) {
    const Channel& channel = channels_[i];
    return channel.shifted[(pixel & channel.mask) >> channel.shift];
  };
  for (size_t x = 0; x < width; ++x) {
    Pixel pixel;
    std::memcpy(&pixel, source.data() + x * sizeof(Pixel), sizeof(Pixel));
    const auto converted =
        static_cast<Pixel>(result(pixel, 0) | result(pixel, 1) | result(pixel, 2));
    std::memcpy(row.data() + x * sizeof(Pixel), &converted, sizeof(Pixel));
  }
}

void BitFieldConverter::Convert(Bytes source, uint32_t width, MutableBytes row) const {
  if (is_usual_) {
    std::memcpy(row.data(), source.data(), size_t{width} * bits_ / 8);
  } else if (bits_ == 16) {
    ConvertPixels<uint16_t>(source, width, row);
  } else {
    ConvertPixels<uint32_t>(source, width, row);
  }
}

}  // namespace quillo::imaging
