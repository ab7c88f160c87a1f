#pragma once

#include "base/ddi.h"

#include <cstddef>
#include <vector>

namespace quillo::host {

/// A device colour of this engine's surfaces (24 bits, blue first) from a COLORREF, and back.
constexpr ULONG SwapRedBlue(ULONG colour) {
  return (colour & 0xFF00FF00) | (colour & 0xFF) << 16 | (colour >> 16 & 0xFF);
}

/// A colour translation with the public XLATEOBJ in front.
class XlateObject : public XLATEOBJ {
 public:
  /// Between direct colours of the same layout: nothing to translate.
  XlateObject();
  /// From palette indexes; entry i is the device colour of index i.
  explicit XlateObject(std::vector<ULONG> vector);

  /// The device colour of each index, even while `pulXlate` is null.
  std::vector<ULONG>& Vector() { return vector_; }
  /// COLORREFs of the source's palette; empty for direct colours.
  const std::vector<ULONG>& SourcePalette() const { return source_palette_; }

 private:
  std::vector<ULONG> vector_;
  std::vector<ULONG> source_palette_;
};

/// How many palettes a driver has created and not deleted.
size_t LivePaletteCount();

}  // namespace quillo::host
