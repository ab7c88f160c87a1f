#include "capture/font.h"

#include <cwchar>

#include "capture/builders.h"

namespace quillo {
namespace {

using namespace records;

/// Compatibility: 16 for a struck-out font, not 1, as in existing streams; GDI accepts any value
/// but 0.
uint8_t StrikeOut(const IFIMETRICS& metrics) {
  return static_cast<uint8_t>(metrics.fsSelection & FM_SEL_STRIKEOUT);
}

bool IsItalic(const IFIMETRICS& metrics, const FONTOBJ& font) {
  return (metrics.fsSelection & FM_SEL_ITALIC) != 0 || (font.flFontType & FO_SIM_ITALIC) != 0;
}

/// Copies as much of a family name as a face name holds with its terminator.
void CopyFaceName(const wchar_t* family, LogFont& font) {
  constexpr size_t kMaxCharacters = std::size(LogFont{}.face_name) - 1;
  std::memcpy(font.face_name, family, wcsnlen(family, kMaxCharacters) * sizeof(wchar_t));
}

LogFont Describe(const IFIMETRICS& metrics, const FONTOBJ& font) {
  LogFont description = {};
  description.height = metrics.fwdUnitsPerEm;
  description.width = metrics.fwdAveCharWidth;
  description.weight = metrics.usWinWeight;
  description.italic = IsItalic(metrics, font);
  description.strike_out = StrikeOut(metrics);
  description.char_set = metrics.jWinCharSet;
  if ((metrics.fsSelection & FM_SEL_OUTLINED) != 0) description.out_precision = OUT_OUTLINE_PRECIS;
  description.pitch_and_family = metrics.jWinPitchAndFamily;
  const auto* start = reinterpret_cast<const std::byte*>(&metrics);
  CopyFaceName(reinterpret_cast<const wchar_t*>(start + metrics.dpwszFamilyName), description);
  return description;
}

}  // namespace

bool WriteFont(DEVICE_PDEV& device, FONTOBJ* font) {
  const IFIMETRICS* metrics = FONTOBJ_pifi(font);
  if (metrics == nullptr) return false;
  EmitPayload(device, REC_CREATEFONT, Describe(*metrics, *font));
  return true;
}

}  // namespace quillo
