#include "imaging/pixels/row_format.h"

#include <cstring>
#include <utility>

#include "imaging/pixels/pixel_bits.h"

namespace quillo::imaging {
namespace {

/// A level from 0 to `max` as a channel from 0 to 65535.
constexpr uint16_t ToChannel(uint32_t level, uint32_t max) {
  return static_cast<uint16_t>((level * 65535u + max / 2) / max);
}
/// A channel as the nearest level from 0 to `max`.
constexpr uint32_t ToLevel(uint16_t channel, uint32_t max) {
  return (channel * max + 32767u) / 65535u;
}

constexpr Colour16 Grey(uint16_t level) { return {level, level, level, 0}; }

constexpr uint16_t Luminance(Colour16 colour) {
  return static_cast<uint16_t>((colour.red * 299u + colour.green * 587u + colour.blue * 114u) /
                               1000u);
}

// One codec for each layout of a pixel: Load reads pixel `x` of a row, Store replaces it.

/// Up to 8 bits: indexes of a palette.
struct Indexed {
  uint32_t bits;
  std::span<const PaletteEntry> palette;

  [[nodiscard]] Colour16 Load(const std::byte* row, uint32_t x) const {
    const uint32_t index = LoadPixelBits(row, bits, x);
    if (index >= palette.size()) return {};
    const PaletteEntry entry = palette[index];
    return {ToChannel(entry.blue, 255), ToChannel(entry.green, 255), ToChannel(entry.red, 255), 0};
  }
  void Store(std::byte* row, uint32_t x, Colour16 colour) const {
    StorePixelBits(row, bits, x, NearestEntry(palette, ToEntry(colour)));
  }
};

struct Grey12 {
  static Colour16 Load(const std::byte* row, uint32_t x) {
    return Grey(ToChannel(LoadPixelBits(row, 12, x), 0xFFF));
  }
  static void Store(std::byte* row, uint32_t x, Colour16 colour) {
    StorePixelBits(row, 12, x, ToLevel(Luminance(colour), 0xFFF));
  }
};

/// Whole 16-bit words: grey levels, or 5 bits a channel.
template <bool kIsGrey>
struct Word {
  static Colour16 Load(const std::byte* row, uint32_t x) {
    uint16_t word;
    std::memcpy(&word, row + size_t{x} * 2, sizeof(word));
    if constexpr (kIsGrey) return Grey(word);
    return {ToChannel(word & 31u, 31), ToChannel(word >> 5 & 31u, 31),
            ToChannel(word >> 10 & 31u, 31), 0};
  }
  static void Store(std::byte* row, uint32_t x, Colour16 colour) {
    const auto word = static_cast<uint16_t>(kIsGrey ? Luminance(colour)
                                                    : ToLevel(colour.red, 31) << 10 |
                                                          ToLevel(colour.green, 31) << 5 |
                                                          ToLevel(colour.blue, 31));
    std::memcpy(row + size_t{x} * 2, &word, sizeof(word));
  }
};

/// Three or four channels of 8 or 16 bits.
template <typename Channel, size_t kChannels>
struct Channels {
  static constexpr uint32_t kMax = static_cast<Channel>(~0);
  static constexpr size_t kBytes = kChannels * sizeof(Channel);

  static Colour16 Load(const std::byte* row, uint32_t x) {
    Channel channels[4] = {};
    std::memcpy(channels, row + x * kBytes, kBytes);
    return {ToChannel(channels[0], kMax), ToChannel(channels[1], kMax),
            ToChannel(channels[2], kMax), ToChannel(channels[3], kMax)};
  }
  static void Store(std::byte* row, uint32_t x, Colour16 colour) {
    const Channel channels[4] = {static_cast<Channel>(ToLevel(colour.blue, kMax)),
                                 static_cast<Channel>(ToLevel(colour.green, kMax)),
                                 static_cast<Channel>(ToLevel(colour.red, kMax)),
                                 static_cast<Channel>(ToLevel(colour.alpha, kMax))};
    std::memcpy(row + x * kBytes, channels, kBytes);
  }
};

/// Calls `visit` with the codec of the format.
template <typename Visit>
void WithCodec(const RowFormat& format, Visit visit) {
  switch (format.bits) {
    case 12:
      return visit(Grey12());
    case 16:
      return format.order == kOrderGrey ? visit(Word<true>()) : visit(Word<false>());
    case 24:
      return visit(Channels<uint8_t, 3>());
    case 32:
      return visit(Channels<uint8_t, 4>());
    case 48:
      return visit(Channels<uint16_t, 3>());
    case 64:
      return visit(Channels<uint16_t, 4>());
    default:
      return visit(Indexed{format.bits, format.palette});
  }
}

bool IsRedFirst(const RowFormat& format) {
  return format.bits >= 24 && format.order == kOrderRedFirst;
}

}  // namespace

void DecodeRow(const RowFormat& format, const std::byte* row, uint32_t first,
               std::span<Colour16> colours) {
  WithCodec(format, [&](const auto& codec) {
    uint32_t x = first;
    for (Colour16& colour : colours) colour = codec.Load(row, x++);
  });
  if (!IsRedFirst(format)) return;
  for (Colour16& colour : colours) std::swap(colour.red, colour.blue);
}

void EncodeRow(const RowFormat& format, std::span<const Colour16> colours, std::byte* row) {
  const bool red_first = IsRedFirst(format);
  WithCodec(format, [&](const auto& codec) {
    uint32_t x = 0;
    for (Colour16 colour : colours) {
      if (red_first) std::swap(colour.red, colour.blue);
      codec.Store(row, x++, colour);
    }
  });
}

}  // namespace quillo::imaging
