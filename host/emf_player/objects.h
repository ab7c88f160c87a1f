#pragma once

#include "base/ddi.h"

#include <cstdint>
#include <memory>
#include <variant>
#include <vector>

#include "base/bytes.h"
#include "host/engine/drawing.h"

namespace quillo::host::emf {

/// 0x00BBGGRR to 0x00RRGGBB.
inline uint32_t ToRgb(COLORREF colour) { return SwapBytes(uint32_t{colour}) >> 8; }

/// A brush as a record creates it. Its colours may be palette indexes.
struct BrushObject {
  enum class Kind {
    kNull,
    kSolid,
    kHatched,
    kPattern,      // a bitmap with its own colours
    kMonoPattern,  // a bitmap drawn in the DC's text colour (0) and background colour (1)
  };

  Kind kind = Kind::kSolid;
  COLORREF colour = 0;
  uint32_t hatch = 0;                             // HS_HORIZONTAL to HS_DIAGCROSS
  std::shared_ptr<const BitmapSource> pattern{};  // not null for the two kinds with a bitmap
};

/// A pen as a record creates it.
struct PenObject {
  uint32_t style = PS_SOLID;  // PS_*: line style, end cap, join, cosmetic or geometric
  uint32_t width = 0;         // logical units; 0: one device pixel
  bool simple = true;         // from EMR_CREATEPEN: geometric unless its width is 0
  BrushObject brush{};
  std::vector<uint32_t> dashes{};  // of PS_USERSTYLE

  uint32_t LineStyle() const { return style & PS_STYLE_MASK; }
};

struct FontObject {
  LOGFONTW font{};
};

/// Colours 0x00RRGGBB.
struct PaletteObject {
  std::vector<uint32_t> colours;
};

/// Occupies an index of the table without being drawn with (colour spaces).
struct OtherObject {};

template <typename T>
using Shared = std::shared_ptr<const T>;

using Object = std::variant<std::monostate, Shared<BrushObject>, Shared<PenObject>,
                            Shared<FontObject>, Shared<PaletteObject>, Shared<OtherObject>>;

}  // namespace quillo::host::emf
