#include "host/pictures/fewest_bits.h"

#include <algorithm>
#include <array>
#include <utility>

namespace quillo::host {

namespace {

/// The colours of a picture, up to 256.
class ColourTable {
 public:
  ColourTable() = default;
  ColourTable(const ColourTable&) = delete;
  ColourTable& operator=(const ColourTable&) = delete;

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
    if (last_->colour == colour) return *last_;  // most pixels are like the one before
    size_t at = colour * 2654435761u >> 22;      // Fibonacci hashing
    while (slots_[at].colour != colour && slots_[at].colour != kFree) at = (at + 1) % kSlots;
    last_ = &slots_[at];
    return *last_;
  }

  std::array<Slot, kSlots> slots_;
  Slot* last_ = slots_.data();  // found last
  std::vector<uint32_t> colours_;
};

/// Calls `use` with each pixel's row, column and colour, until it returns false.
template <typename Use>
bool EachPixel(const BitmapSource& picture, Use use) {
  for (LONG y = 0; y < picture.height; ++y) {
    const auto* pixel = reinterpret_cast<const uint8_t*>(picture.bits.data()) +
                        picture.Stride() * static_cast<size_t>(y);
    for (LONG x = 0; x < picture.width; ++x, pixel += 3) {
      const uint32_t colour = pixel[0] | uint32_t{pixel[1]} << 8 | uint32_t{pixel[2]} << 16;
      if (!use(static_cast<size_t>(x), static_cast<size_t>(y), colour)) return false;
    }
  }
  return true;
}

}  // namespace

BitmapSource WithFewestBits(BitmapSource picture) {
  ColourTable table;
  if (!EachPixel(picture, [&](size_t, size_t, uint32_t colour) { return table.Add(colour); })) {
    return picture;
  }
  BitmapSource packed;
  packed.width = picture.width;
  packed.height = picture.height;
  packed.top_down = picture.top_down;
  packed.palette = table.Number();
  packed.bits_per_pixel = packed.palette.size() <= 2 ? 1 : packed.palette.size() <= 16 ? 4 : 8;
  const size_t stride = packed.Stride(), depth = packed.bits_per_pixel;
  packed.bits.resize(stride * static_cast<size_t>(packed.height));
  EachPixel(picture, [&](size_t x, size_t y, uint32_t colour) {
    const size_t bit = x * depth;
    packed.bits[y * stride + bit / 8] |=
        static_cast<std::byte>(table.IndexOf(colour) << (8 - depth - bit % 8));
    return true;
  });
  return packed;
}

}  // namespace quillo::host
