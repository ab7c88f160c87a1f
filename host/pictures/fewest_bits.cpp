#include "host/pictures/fewest_bits.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace quillo::host {

namespace {

/// The colours of a picture, up to 256.
class ColourTable {
 public:
  /// False when there is no room for another colour.
  bool Add(uint32_t colour) {
    Slot& slot = Find(colour);
    if (slot.colour == colour) return true;
    if (colours_.size() == kMaxColours) return false;
    slot.colour = colour;
    colours_.push_back(colour);
    return true;
  }

  /// Sorts and numbers the colours.
  std::vector<uint32_t> Number() {
    std::ranges::sort(colours_);
    for (size_t i = 0; i < colours_.size(); ++i) Find(colours_[i]).index = static_cast<uint8_t>(i);
    return colours_;
  }

  uint8_t IndexOf(uint32_t colour) { return Find(colour).index; }

 private:
  static constexpr size_t kMaxColours = 256;
  static constexpr size_t kSlots = 1024;
  static constexpr uint32_t kFree = 0xFFFFFFFF;  // no colour
  struct Slot {
    uint32_t colour = kFree;
    uint8_t index = 0;
  };

  /// The colour's slot, or the free one where it belongs.
  Slot& Find(uint32_t colour) {
    size_t at = colour * 2654435761u >> 22;  // Fibonacci hashing
    while (slots_[at].colour != colour && slots_[at].colour != kFree) at = (at + 1) % kSlots;
    return slots_[at];
  }

  std::array<Slot, kSlots> slots_;
  std::vector<uint32_t> colours_;
};

constexpr size_t kPixel = 3;  // bytes

/// How many of so many pixels have the colour of the first.
size_t CountAlike(const uint8_t* first, size_t pixels) {
  size_t alike = kPixel;  // bytes, each like the one a pixel before it
  const auto eight_alike = [&] {
    return std::memcmp(first + alike, first + alike - kPixel, 8) == 0;
  };
  while (alike + 8 <= pixels * kPixel && eight_alike()) alike += 8;
  size_t count = alike / kPixel;
  while (count < pixels && std::memcmp(first + count * kPixel, first, kPixel) == 0) ++count;
  return count;
}

/// Pixels of one colour beside each other: columns `begin` to `end` - 1 of a row.
struct Run {
  size_t row;
  size_t begin;
  size_t end;
  uint32_t colour;
};

/// Calls `use` with each run of a picture, until it returns false.
template <typename Use>
bool EachRun(const BitmapSource& picture, Use use) {
  const auto width = static_cast<size_t>(picture.width);
  const auto* pixels = reinterpret_cast<const uint8_t*>(picture.bits.data());
  for (size_t y = 0; y < static_cast<size_t>(picture.height); ++y, pixels += picture.Stride()) {
    for (size_t x = 0, end = 0; x < width; x = end) {
      const uint8_t* first = pixels + x * kPixel;
      end = x + CountAlike(first, width - x);
      const uint32_t colour = first[0] | uint32_t{first[1]} << 8 | uint32_t{first[2]} << 16;
      if (!use(Run{y, x, end, colour})) return false;
    }
  }
  return true;
}

}  // namespace

BitmapSource WithFewestBits(BitmapSource picture) {
  ColourTable table;
  if (!EachRun(picture, [&](const Run& run) { return table.Add(run.colour); })) return picture;
  BitmapSource packed;
  packed.width = picture.width;
  packed.height = picture.height;
  packed.top_down = picture.top_down;
  packed.palette = table.Number();
  packed.bits_per_pixel = packed.palette.size() <= 2 ? 1 : packed.palette.size() <= 16 ? 4 : 8;
  const size_t stride = packed.Stride(), depth = packed.bits_per_pixel;
  packed.bits.resize(stride * static_cast<size_t>(packed.height));
  std::byte* const rows = packed.bits.data();
  EachRun(picture, [&](const Run& run) {
    std::byte* const row = rows + run.row * stride;
    const unsigned index = table.IndexOf(run.colour);
    const size_t in_byte = 8 / depth;  // pixels
    const auto put = [&](size_t x) {
      row[x / in_byte] |= static_cast<std::byte>(index << (8 - depth - x % in_byte * depth));
    };
    size_t x = run.begin;
    while (x < run.end && x % in_byte != 0) put(x++);
    const size_t whole = (run.end - x) / in_byte;  // bytes
    const unsigned repeated = index * (0xFF / ((1u << depth) - 1));
    std::fill_n(row + x / in_byte, whole, static_cast<std::byte>(repeated));
    for (x += whole * in_byte; x < run.end; ++x) put(x);
    return true;
  });
  return packed;
}

}  // namespace quillo::host
