#include "fonts/font_identity.h"

#include <algorithm>
#include <cstring>
#include <tuple>

namespace quillo {
namespace {

/// Compatibility: asks for up to 64 characters although a face holds 32. Kept for pages: it is the
/// question that has always been put. Faces have at most 31 characters in practice; the rest of a
/// longer one is dropped.
bool ReadFace(HDC dc, wchar_t (&face)[LF_FACESIZE]) {
  constexpr int kAskedCharacters = 64;
  wchar_t answer[kAskedCharacters] = {};
  if (GetTextFaceW(dc, kAskedCharacters, answer) == 0) return false;
  std::copy_n(answer, LF_FACESIZE - 1, face);
  face[LF_FACESIZE - 1] = L'\0';
  return true;
}

/// Every field that tells one font from another.
auto DecidingMetrics(const TEXTMETRICW& m) {
  return std::tuple(m.tmHeight, m.tmWeight, m.tmOverhang, m.tmDigitizedAspectX,
                    m.tmDigitizedAspectY, m.tmFirstChar, m.tmLastChar, m.tmDefaultChar,
                    m.tmBreakChar, m.tmItalic, m.tmUnderlined, m.tmStruckOut, m.tmPitchAndFamily,
                    m.tmCharSet);
}

}  // namespace

bool FontIdentity::Read(HDC dc) { return GetTextMetricsW(dc, &metrics) && ReadFace(dc, face); }

bool FontIdentity::Matches(const FontIdentity& other) const {
  return DecidingMetrics(metrics) == DecidingMetrics(other.metrics) &&
         lstrcmpW(face, other.face) == 0;
}

bool FontIdentity::operator==(const FontIdentity& other) const {
  // The whole structure counts, also its padding, which stays zero.
  // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison)
  return std::memcmp(&metrics, &other.metrics, sizeof(metrics)) == 0 &&
         lstrcmpW(face, other.face) == 0;
}

}  // namespace quillo
