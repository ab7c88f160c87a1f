#include "imaging/painting/dither.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "imaging/pixels/pixel_bits.h"

namespace quillo::imaging {
namespace {

constexpr size_t kColours = 1 << 15;

/// The 8-bit level that represents all levels with its 5 upper bits.
constexpr uint8_t Coarse(int level) { return static_cast<uint8_t>((level & 0xF8) | level >> 5); }

}  // namespace

size_t DitherWorkSize(uint32_t width) {
  return 2 * (size_t{width} + 2) * sizeof(ErrorDiffuser::Error) + kColours * sizeof(uint16_t);
}

ErrorDiffuser::ErrorDiffuser(std::span<const PaletteEntry> palette, uint32_t width,
                             MutableBytes work)
    : palette_(palette),
      width_(width),
      here_(reinterpret_cast<Error*>(work.data()) + 1),
      below_(here_ + width + 2),
      nearest_(reinterpret_cast<uint16_t*>(below_ + width + 1)) {}

uint32_t ErrorDiffuser::Nearest(PaletteEntry colour) {
  const auto upper = [](uint8_t level) { return static_cast<size_t>(level) >> 3; };
  const size_t key = upper(colour.red) << 10 | upper(colour.green) << 5 | upper(colour.blue);
  if (nearest_[key] == 0) nearest_[key] = static_cast<uint16_t>(NearestEntry(palette_, colour) + 1);
  return nearest_[key] - 1u;
}

void ErrorDiffuser::Row(const std::byte* colours, uint32_t bits, std::byte* indexes) {
  for (uint32_t x = 0; x < width_; ++x) {
    int wanted[3];
    for (size_t c = 0; c < 3; ++c) {
      const int inherited = here_[x].channel[c];
      wanted[c] = std::clamp(static_cast<int>(colours[size_t{x} * 3 + c]) + inherited / 16, 0, 255);
    }
    const uint32_t index = Nearest({Coarse(wanted[0]), Coarse(wanted[1]), Coarse(wanted[2]), 0});
    StorePixelBits(indexes, bits, x, index);
    const PaletteEntry entry = palette_[index];
    const int chosen[3] = {entry.blue, entry.green, entry.red};
    for (size_t c = 0; c < 3; ++c) {
      const auto spread = [c, error = wanted[c] - chosen[c]](Error& to, int sixteenths) {
        to.channel[c] = static_cast<int16_t>(to.channel[c] + error * sixteenths);
      };
      spread(here_[x + 1], 7);
      spread(below_[static_cast<ptrdiff_t>(x) - 1], 3);
      spread(below_[x], 5);
      spread(below_[x + 1], 1);
    }
  }
  std::swap(here_, below_);
  std::memset(below_ - 1, 0, (size_t{width_} + 2) * sizeof(Error));
}

}  // namespace quillo::imaging
