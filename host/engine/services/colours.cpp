#include "host/engine/services/colours.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "host/engine/services/guard.h"
#include "host/engine/services/handle_table.h"

namespace quillo::host {
namespace {

struct PaletteObject {
  std::vector<ULONG> colours;
};

HandleTable<HPALETTE, PaletteObject>& Palettes() {
  static HandleTable<HPALETTE, PaletteObject> palettes;
  return palettes;
}

}  // namespace

XlateObject::XlateObject() : XLATEOBJ{} {
  flXlate = XO_TRIVIAL;
  iSrcType = PAL_BGR;
  iDstType = PAL_BGR;
}

XlateObject::XlateObject(std::vector<ULONG> vector) : XLATEOBJ{}, vector_(std::move(vector)) {
  for (const ULONG colour : vector_) source_palette_.push_back(SwapRedBlue(colour));
  flXlate = XO_TABLE;
  iSrcType = PAL_INDEXED;
  iDstType = PAL_BGR;
  cEntries = static_cast<ULONG>(vector_.size());
  pulXlate = vector_.data();
}

size_t LivePaletteCount() { return Palettes().Size(); }

}  // namespace quillo::host

using namespace quillo::host;

extern "C" HPALETTE APIENTRY EngCreatePalette(ULONG iMode, ULONG cColors, ULONG* pulColors,
                                              FLONG flRed, FLONG flGreen, FLONG flBlue) {
  return Service<HPALETTE>("EngCreatePalette", nullptr, [&]() -> HPALETTE {
    const bool indexed = iMode == PAL_INDEXED && cColors > 0 && pulColors != nullptr;
    const bool fields = iMode == PAL_BITFIELDS && (flRed | flGreen | flBlue) != 0;
    if (!indexed && !fields && iMode != PAL_RGB && iMode != PAL_BGR) {
      SetLastError(ERROR_INVALID_PARAMETER);
      return nullptr;
    }
    auto palette = std::make_unique<PaletteObject>();
    if (indexed) palette->colours.assign(pulColors, pulColors + cColors);
    return Palettes().Add(std::move(palette));
  });
}

extern "C" WINBOOL APIENTRY EngDeletePalette(HPALETTE hpal) {
  return Palettes().Remove(hpal) ? TRUE : FALSE;
}

extern "C" ULONG* APIENTRY XLATEOBJ_piVector(XLATEOBJ* pxlo) {
  if (pxlo == nullptr || (pxlo->flXlate & XO_TABLE) == 0) return nullptr;
  return static_cast<XlateObject*>(pxlo)->Vector().data();
}

extern "C" ULONG APIENTRY XLATEOBJ_cGetPalette(XLATEOBJ* pxlo, ULONG iPal, ULONG cPal,
                                               ULONG* pPal) {
  if (pxlo == nullptr || iPal != XO_SRCPALETTE) return 0;
  const std::vector<ULONG>& palette = static_cast<XlateObject*>(pxlo)->SourcePalette();
  if (pPal == nullptr) return static_cast<ULONG>(palette.size());
  const ULONG count = std::min(cPal, static_cast<ULONG>(palette.size()));
  std::copy_n(palette.begin(), count, pPal);
  return count;
}
