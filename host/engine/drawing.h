#pragma once

#include "base/ddi.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "base/bytes.h"
#include "base/dib.h"
#include "host/engine/clip_shape.h"

namespace quillo::host {

/// The bytes of a picture: its own, or lent by a file in memory, which must outlive it. What
/// changes them makes them its own first.
class PictureBits {
 public:
  PictureBits() = default;
  static PictureBits Lent(Bytes bytes) {
    PictureBits bits;
    bits.lent_ = bytes;
    return bits;
  }

  operator Bytes() const { return lent_.empty() ? Bytes(own_) : lent_; }
  const std::byte* data() const { return Bytes(*this).data(); }
  size_t size() const { return Bytes(*this).size(); }

  std::byte* data() { return Own().data(); }
  std::byte& operator[](size_t index) { return Own()[index]; }
  void resize(size_t size) { Own().resize(size); }
  void assign(size_t size, std::byte value) {
    lent_ = {};
    own_.assign(size, value);
  }

 private:
  std::vector<std::byte>& Own() {
    if (!lent_.empty()) {
      own_.assign(lent_.begin(), lent_.end());
      lent_ = {};
    }
    return own_;
  }

  std::vector<std::byte> own_;
  Bytes lent_;
};

/// A picture in memory, laid out as a DIB.
struct BitmapSource {
  LONG width = 0;               // pixels
  LONG height = 0;              // pixels, always positive
  uint16_t bits_per_pixel = 0;  // 1, 4, 8, 16, 24 or 32
  bool top_down = false;        // order of the rows in `bits`
  bool run_length = false;      // RLE4 or RLE8 by the depth; then bottom-up
  uint32_t red_mask = 0;        // 16 and 32 bits: all zero means 5-5-5 and 8-8-8
  uint32_t green_mask = 0;
  uint32_t blue_mask = 0;
  std::vector<uint32_t> palette;  // 0x00RRGGBB, up to 8 bits; missing entries are black
  PictureBits bits;               // rows of whole 32-bit words; missing bytes are zero

  /// Bytes of one uncompressed row.
  size_t Stride() const { return DibStride(static_cast<uint64_t>(width), bits_per_pixel); }
};

struct BrushDescription {
  enum class Kind { kSolid, kHatched, kPattern };

  Kind kind = Kind::kSolid;
  COLORREF colour = RGB(0, 0, 0);               // solid colour, or colour of the hatch lines
  COLORREF background = RGB(255, 255, 255);     // between the lines of a hatch
  ULONG hatch = HS_HORIZONTAL;                  // HS_HORIZONTAL to HS_DIAGCROSS
  std::shared_ptr<const BitmapSource> pattern;  // a monochrome one has its two colours

  static BrushDescription Solid(COLORREF colour) {
    BrushDescription brush;
    brush.colour = colour;
    return brush;
  }
};

struct PenDescription {
  BrushDescription brush;
  bool geometric = false;        // else cosmetic: one device pixel wide
  float width = 1;               // geometric: world units
  ULONG join = JOIN_ROUND;       // JOIN_ROUND, JOIN_BEVEL, JOIN_MITER
  ULONG end_cap = ENDCAP_ROUND;  // ENDCAP_ROUND, ENDCAP_SQUARE, ENDCAP_BUTT
  float miter_limit = 10;
  bool alternate = false;    // cosmetic: every other pixel (PS_ALTERNATE)
  std::vector<float> style;  // dashes and gaps in turn; geometric: world units, cosmetic: style
                             // units, whole numbers; empty: solid
  XFORM world_to_device{1, 0, 0, 1, 0, 0};  // geometric: shape of the pen
};

/// Dashes and gaps of a cosmetic pen of style PS_SOLID to PS_DASHDOTDOT, in style units.
std::vector<float> CosmeticStyle(DWORD pen_style);
/// The join (JOIN_*) and the end cap (ENDCAP_*) that a pen's style names; round when it names none.
ULONG JoinOf(DWORD pen_style);
ULONG EndCapOf(DWORD pen_style);

/// The state of a DC that applies to each drawing call.
struct DrawState {
  ClipShape clip;                 // device pixels
  POINTL brush_origin{0, 0};      // device pixels
  uint8_t rop2 = R2_COPYPEN;      // R2_BLACK to R2_WHITE
  bool opaque_background = true;  // background mode; false: gaps of hatches stay
};

}  // namespace quillo::host
