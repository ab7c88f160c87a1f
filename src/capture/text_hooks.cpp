#include "base/ddi.h"

#include "capture/brush.h"
#include "capture/builders.h"
#include "capture/clip.h"
#include "capture/drawing_call.h"
#include "capture/font.h"
#include "capture/hooks.h"
#include "capture/records/conversions.h"
#include "capture/text_run.h"

// Text calls. No glyphs are drawn here: playback creates the font from its description and draws
// the characters under the font's transform. Underline and strike-out bars, brush origin and mix
// are not recorded.
namespace quillo {
namespace {

using namespace records;

/// The transform from font space to the page.
struct FontTransform {
  explicit FontTransform(FONTOBJ* font) : object(FONTOBJ_pxoGetXform(font)) {
    if (object != nullptr) complexity = XFORMOBJ_iGetXform(object, &matrix);
  }
  [[nodiscard]] bool IsIdentity() const { return complexity == GX_IDENTITY; }
  [[nodiscard]] bool HasInverse() const {
    return IsIdentity() || double{matrix.eM11} * matrix.eM22 != double{matrix.eM12} * matrix.eM21;
  }

  XFORMOBJ* object;
  ULONG complexity = DDI_ERROR;
  XFORML matrix = {};  // all zero without an object
};

/// The device colour of a brush, or `otherwise` when it is not a solid one.
uint32_t SolidColour(const BRUSHOBJ* brush, uint32_t otherwise) {
  return brush != nullptr && brush->iSolidColor != kNoSolidColour ? brush->iSolidColor : otherwise;
}

void WriteTextState(DEVICE_PDEV& device, const STROBJ& text, const RECTL* opaque_rect,
                    const BRUSHOBJ* foreground, const BRUSHOBJ* opaque_brush) {
  constexpr uint32_t kBlack = 0;
  constexpr uint32_t kWhite = 0xFFFFFF;
  // Compatibility: each run replaces this alignment by its own; existing streams have both records.
  constexpr uint32_t kVerticalAlignment = TA_BASELINE | TA_CENTER;
  if ((text.flAccel & SO_VERTICAL) != 0) {
    EmitPayload(device, REC_SETTEXTALIGN, kVerticalAlignment);
  }
  EmitPayload(device, REC_SETTEXTCOLOR, SwapRedBlue(SolidColour(foreground, kBlack)));
  if (opaque_brush != nullptr) EmitSetBkColor(device, SolidColour(opaque_brush, kWhite));
  EmitPayload(device, REC_SETBKMODE,
              opaque_rect != nullptr ? uint32_t{OPAQUE} : uint32_t{TRANSPARENT});
}

/// Records the string's runs: one when its positions are at hand, else one per batch.
bool WriteRuns(DEVICE_PDEV& device, STROBJ& text, XFORMOBJ* transform, const RECTL* opaque_rect) {
  const wchar_t* characters = text.pwszOrg;
  if (text.pgp != nullptr) {
    return WriteTextRun(device, {text.pgp, text.cGlyphs}, text, transform, opaque_rect, characters);
  }
  STROBJ_vEnumStart(&text);
  for (BOOL more = TRUE; more != FALSE;) {
    ULONG count = 0;
    GLYPHPOS* glyphs = nullptr;
    more = STROBJ_bEnum(&text, &count, &glyphs);
    if (static_cast<ULONG>(more) == DDI_ERROR) return false;
    if (!WriteTextRun(device, {glyphs, count}, text, transform, opaque_rect, characters)) {
      return false;
    }
    if (characters != nullptr) characters += count;
  }
  return true;
}

}  // namespace

BOOL APIENTRY DrvTextOut(SURFOBJ* surface, STROBJ* text, FONTOBJ* font, CLIPOBJ* clip, RECTL*,
                         RECTL* opaque_rect, BRUSHOBJ* foreground, BRUSHOBJ* opaque_brush, POINTL*,
                         MIX) noexcept {
  DEVICE_PDEV* const target = FindDevice(surface);
  if (target == nullptr || text == nullptr || font == nullptr) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  const FontTransform transform(font);
  bool transform_set = false;
  const BOOL recorded = CaptureDrawing(target, [&](DEVICE_PDEV& device) {
    WriteClip(device, clip, nullptr);
    transform_set = !transform.IsIdentity();
    if (transform_set) EmitPayload(device, REC_SETWORLDTRANSFORM, transform.matrix);
    bool written = WriteFont(device, font);
    if (written) {
      WriteTextState(device, *text, opaque_rect, foreground, opaque_brush);
      written = transform.HasInverse() && WriteRuns(device, *text, transform.object, opaque_rect);
    }
    // Compatibility: a text call that fails resets the transform inside its bracket, one that
    // succeeds after it, as in existing streams.
    if (!written && transform_set) EmitRecord(device, REC_RESETWORLDTRANSFORM);
    return written ? TRUE : FALSE;
  });
  if (recorded && transform_set) EmitRecord(*target, REC_RESETWORLDTRANSFORM);
  return recorded;
}

ULONG APIENTRY DrvGetGlyphMode(DHPDEV, FONTOBJ*) noexcept { return FO_GLYPHBITS; }

}  // namespace quillo
