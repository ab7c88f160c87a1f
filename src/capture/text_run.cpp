#include "capture/text_run.h"

#include "capture/builders.h"
#include "capture/geometry.h"

namespace quillo {
namespace {

using namespace records;

/// Every recorded position is that of a glyph's origin.
constexpr uint32_t kRunAlignment = TA_BASELINE;

/// What the text records of a run share.
struct RunFrame {
  uint32_t options;
  Rect rectangle;  // font space
};

/// Converts device points to font space in place. False when the transform has no inverse.
bool ToFontSpace(XFORMOBJ* transform, std::span<POINTL> points) {
  return XFORMOBJ_bApplyXform(transform, XF_INV_LTOL, static_cast<ULONG>(points.size()),
                              points.data(), points.data());
}

uint32_t OptionsOf(const STROBJ& text, const RECTL* opaque_rect) {
  uint32_t options = 0;
  if ((text.flAccel & SO_GLYPHINDEX_TEXTOUT) != 0) options |= ETO_GLYPH_INDEX;
  if (opaque_rect != nullptr) options |= ETO_OPAQUE;
  return options;
}

/// Whether each glyph gets a record of its own. Later tests override earlier ones.
bool GoesGlyphByGlyph(const DEVICE_PDEV& device, const STROBJ& text, size_t glyph_count) {
  bool by_glyph = true;
  if (glyph_count < 2) by_glyph = false;
  if ((text.flAccel & SO_FLAG_DEFAULT_PLACEMENT) != 0) by_glyph = false;
  if ((text.flAccel & SO_VERTICAL) != 0) by_glyph = true;
  if (device.resolution.x != device.resolution.y) by_glyph = true;
  return by_glyph;
}

/// The position of a glyph, moved onto the line of the first one when the string has a line.
POINTL PlaceOf(const GLYPHPOS& glyph, const GLYPHPOS& first, const STROBJ& text) {
  POINTL place = glyph.ptl;
  if ((text.flAccel & SO_HORIZONTAL) != 0) {
    place.y = first.ptl.y;
  } else if ((text.flAccel & SO_VERTICAL) != 0) {
    place.x = first.ptl.x;
  }
  return place;
}

void EmitExtTextOut(DEVICE_PDEV& device, const RunFrame& frame, const POINTL& reference,
                    std::span<const wchar_t> characters) {
  const auto count = static_cast<uint32_t>(characters.size());
  const uint64_t size = sizeof(ExtTextOutPayload) + characters.size_bytes();
  if (size > UINT32_MAX) return;
  const PayloadBlock block(static_cast<uint32_t>(size));
  if (!block) return;
  const ExtTextOutHeader header = {ToPoint(reference), frame.options, frame.rectangle, count, 0};
  Store(block.Content(), 0, header);
  if (count != 0) {
    std::memcpy(block.Content().data() + sizeof header, characters.data(), characters.size_bytes());
  }
  block.Emit(device, REC_EXTTEXTOUT);
}

bool WriteGlyphByGlyph(DEVICE_PDEV& device, const RunFrame& frame, std::span<const GLYPHPOS> glyphs,
                       const STROBJ& text, XFORMOBJ* transform,
                       std::span<const wchar_t> characters) {
  EmitRecord(device, REC_BEGINGLYPHRUNS);
  bool placed = true;
  for (size_t i = 0; i < glyphs.size(); ++i) {
    POINTL place = PlaceOf(glyphs[i], glyphs.front(), text);
    placed = ToFontSpace(transform, {&place, 1});
    if (!placed) break;
    EmitExtTextOut(device, frame, place,
                   characters.empty() ? characters : characters.subspan(i, 1));
  }
  EmitRecord(device, REC_ENDGLYPHRUNS);
  return placed;
}

}  // namespace

bool WriteTextRun(DEVICE_PDEV& device, std::span<const GLYPHPOS> glyphs, const STROBJ& text,
                  XFORMOBJ* font_transform, const RECTL* opaque_rect, const wchar_t* characters) {
  if (glyphs.empty()) return true;
  POINTL reference = glyphs.front().ptl;
  const RECTL page = {0, 0, device.surface_size.cx, device.surface_size.cy};
  const RECTL& area = opaque_rect != nullptr ? *opaque_rect : page;
  POINTL corners[] = {{area.left, area.top}, {area.right, area.bottom}};
  if (!ToFontSpace(font_transform, {&reference, 1}) || !ToFontSpace(font_transform, corners)) {
    return false;
  }

  const RunFrame frame = {OptionsOf(text, opaque_rect),
                          {corners[0].x, corners[0].y, corners[1].x, corners[1].y}};
  std::span<const wchar_t> all;
  if (characters != nullptr) all = {characters, glyphs.size()};

  EmitPayload(device, REC_SETTEXTALIGN, kRunAlignment);
  EmitPayload(device, REC_TEXTRUN,
              TextRunPayload{ToPoint(reference), {}, static_cast<uint32_t>(glyphs.size()), {}});
  if (GoesGlyphByGlyph(device, text, glyphs.size())) {
    return WriteGlyphByGlyph(device, frame, glyphs, text, font_transform, all);
  }
  EmitExtTextOut(device, frame, reference, all);
  return true;
}

}  // namespace quillo
