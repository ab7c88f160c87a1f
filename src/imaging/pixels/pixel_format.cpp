#include "imaging/pixels/pixel_format.h"

#include <utility>

#include "imaging/pixels/pixel_bits.h"

namespace quillo::imaging {
namespace {

/// Scales a channel of `max` + 1 levels to 65536 levels and back.
constexpr uint16_t Widen(uint32_t level, uint32_t max) {
  return static_cast<uint16_t>((level * 65535u + max / 2) / max);
}
constexpr uint32_t Narrow(uint16_t channel, uint32_t max) {
  return (channel * max + 32767u) / 65535u;
}

constexpr Colour16 Widen(PaletteEntry entry) {
  return {Widen(entry.blue, 255), Widen(entry.green, 255), Widen(entry.red, 255), 0};
}

constexpr Colour16 Grey(uint16_t level) { return {level, level, level, 0}; }

constexpr uint16_t Luminance(Colour16 colour) {
  return static_cast<uint16_t>((colour.red * 299u + colour.green * 587u + colour.blue * 114u) /
                               1000u);
}

/// `Channel` is uint8_t or uint16_t; three or four of them make a pixel.
template <typename Channel, size_t kChannels>
Colour16 LoadChannels(const std::byte* row, uint32_t x) {
  Channel channels[4] = {};
  std::memcpy(channels, row + x * (kChannels * sizeof(Channel)), kChannels * sizeof(Channel));
  constexpr uint32_t kMax = static_cast<Channel>(~0);
  return {Widen(channels[0], kMax), Widen(channels[1], kMax), Widen(channels[2], kMax),
          Widen(channels[3], kMax)};
}

template <typename Channel, size_t kChannels>
void StoreChannels(std::byte* row, uint32_t x, Colour16 colour) {
  constexpr uint32_t kMax = static_cast<Channel>(~0);
  const Channel channels[4] = {static_cast<Channel>(Narrow(colour.blue, kMax)),
                               static_cast<Channel>(Narrow(colour.green, kMax)),
                               static_cast<Channel>(Narrow(colour.red, kMax)),
                               static_cast<Channel>(Narrow(colour.alpha, kMax))};
  std::memcpy(row + x * (kChannels * sizeof(Channel)), channels, kChannels * sizeof(Channel));
}

uint16_t LoadWord(const std::byte* row, uint32_t x) {
  uint16_t word;
  std::memcpy(&word, row + size_t{x} * 2, sizeof(word));
  return word;
}

bool IsRedFirst(const PixelFormat& format) {
  return format.bits >= 24 && format.order == kOrderRedFirst;
}

Colour16 LoadColour(const PixelFormat& format, const std::byte* row, uint32_t x) {
  switch (format.bits) {
    case 12: {
      const uint32_t level = LoadPixelBits(row, 12, x);
      return Grey(Widen(level, 0xFFF));
    }
    case 16: {
      const uint16_t word = LoadWord(row, x);
      if (format.order == kOrderGrey) return Grey(word);
      return {Widen(word & 31u, 31), Widen(word >> 5 & 31u, 31), Widen(word >> 10 & 31u, 31), 0};
    }
    case 24:
      return LoadChannels<uint8_t, 3>(row, x);
    case 32:
      return LoadChannels<uint8_t, 4>(row, x);
    case 48:
      return LoadChannels<uint16_t, 3>(row, x);
    case 64:
      return LoadChannels<uint16_t, 4>(row, x);
    default: {
      const uint32_t index = LoadPixelBits(row, format.bits, x);
      return index < format.palette.size() ? Widen(format.palette[index]) : Colour16{};
    }
  }
}

void StoreColour(const PixelFormat& format, Colour16 colour, std::byte* row, uint32_t x) {
  switch (format.bits) {
    case 12:
      return StorePixelBits(row, 12, x, Narrow(Luminance(colour), 0xFFF));
    case 16: {
      const uint32_t rgb =
          Narrow(colour.red, 31) << 10 | Narrow(colour.green, 31) << 5 | Narrow(colour.blue, 31);
      const auto word = format.order == kOrderGrey ? Luminance(colour) : static_cast<uint16_t>(rgb);
      std::memcpy(row + size_t{x} * 2, &word, sizeof(word));
      return;
    }
    case 24:
      return StoreChannels<uint8_t, 3>(row, x, colour);
    case 32:
      return StoreChannels<uint8_t, 4>(row, x, colour);
    case 48:
      return StoreChannels<uint16_t, 3>(row, x, colour);
    case 64:
      return StoreChannels<uint16_t, 4>(row, x, colour);
    default:
      return StorePixelBits(row, format.bits, x, NearestEntry(format.palette, ToEntry(colour)));
  }
}

}  // namespace

void DecodeRow(const PixelFormat& format, const std::byte* row, uint32_t first,
               std::span<Colour16> colours) {
  for (uint32_t i = 0; i < colours.size(); ++i) {
    colours[i] = LoadColour(format, row, first + i);
    if (IsRedFirst(format)) std::swap(colours[i].red, colours[i].blue);
  }
}

void EncodeRow(const PixelFormat& format, std::span<const Colour16> colours, std::byte* row) {
  for (uint32_t i = 0; i < colours.size(); ++i) {
    Colour16 colour = colours[i];
    if (IsRedFirst(format)) std::swap(colour.red, colour.blue);
    StoreColour(format, colour, row, i);
  }
}

}  // namespace quillo::imaging
