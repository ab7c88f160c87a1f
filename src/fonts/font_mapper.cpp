#include "fonts/font_mapper.h"

#include <algorithm>
#include <cstring>
#include <tuple>

namespace quillo {
namespace {

using Face = wchar_t[LF_FACESIZE];

/// Asks for up to 64 characters although a face holds 32. The number is meant and stays; faces have
/// at most 31 characters in practice, and what a longer one has beyond them is dropped.
bool ReadFace(HDC dc, Face& face) {
  constexpr int kAskedCharacters = 64;
  wchar_t answer[kAskedCharacters] = {};
  if (GetTextFaceW(dc, kAskedCharacters, answer) == 0) return false;
  std::copy_n(answer, LF_FACESIZE - 1, face);
  face[LF_FACESIZE - 1] = L'\0';
  return true;
}

/// Every field that tells one font from another; ascent, descent, leadings and widths do not.
auto DecidingMetrics(const TEXTMETRICW& m) {
  return std::tuple(m.tmHeight, m.tmWeight, m.tmOverhang, m.tmDigitizedAspectX,
                    m.tmDigitizedAspectY, m.tmFirstChar, m.tmLastChar, m.tmDefaultChar,
                    m.tmBreakChar, m.tmItalic, m.tmUnderlined, m.tmStruckOut, m.tmPitchAndFamily,
                    m.tmCharSet);
}

}  // namespace

int32_t CFontMapper::Build(HDC dc) {
  return cmap_.Load(dc) != 0 && glyph_map_.Build(cmap_) != 0 && GetTextMetricsW(dc, &metrics_) &&
         ReadFace(dc, face_);
}

int32_t CFontMapper::Matches(HDC dc) const {
  TEXTMETRICW metrics = {};
  Face face = {};
  if (!GetTextMetricsW(dc, &metrics) || !ReadFace(dc, face)) return 0;
  return lstrcmpW(face, face_) == 0 && DecidingMetrics(metrics) == DecidingMetrics(metrics_);
}

uint32_t CFontMapper::Translate(uint32_t count, const uint16_t* glyphs,
                                uint16_t* characters) const {
  std::transform(glyphs, glyphs + count, characters,
                 [this](uint16_t glyph) { return glyph_map_.CharacterOf(glyph); });
  return count;
}

bool CFontMapper::operator==(const CFontMapper& other) const {
  return std::memcmp(&metrics_, &other.metrics_, sizeof(metrics_)) == 0 &&
         lstrcmpW(face_, other.face_) == 0;
}

}  // namespace quillo
