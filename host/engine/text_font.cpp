#include "host/engine/text_font.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <new>
#include <vector>

#include "base/bytes.h"
#include "host/engine/clusters.h"
#include "host/engine/font_names.h"

namespace quillo::host {
namespace {

/// Outline metrics of the selected font, followed by the names; empty for a font without outlines.
std::vector<std::byte> OutlineMetrics(HDC dc) {
  std::vector<std::byte> block(GetOutlineTextMetricsW(dc, 0, nullptr));
  if (!block.empty()) {
    GetOutlineTextMetricsW(dc, static_cast<UINT>(block.size()),
                           reinterpret_cast<OUTLINETEXTMETRICW*>(block.data()));
  }
  return block;
}

/// A name of the metrics block; its members hold offsets although they are declared as pointers.
std::wstring NameIn(const std::vector<std::byte>& block, const char* offset) {
  const size_t start = reinterpret_cast<size_t>(offset);
  if (start == 0 || start >= block.size()) return {};
  return reinterpret_cast<const wchar_t*>(block.data() + start);
}

bool SameName(const std::wstring& a, const wchar_t* b) {
  return CompareStringOrdinal(a.c_str(), -1, b, -1, TRUE) == CSTR_EQUAL;
}

}  // namespace

TextFont::TextFont(const LOGFONTW& font, const wchar_t* face)
    : wanted_(font),
      dc_(CreateCompatibleDC(nullptr)),
      transformed_dc_(CreateCompatibleDC(nullptr)) {
  LOGFONTW upright = font;
  upright.lfWidth = upright.lfEscapement = upright.lfOrientation = 0;
  upright.lfUnderline = upright.lfStrikeOut = FALSE;
  upright.lfOutPrecision = OUT_TT_ONLY_PRECIS;
  if (face != nullptr) {
    lstrcpynW(upright.lfFaceName, face, LF_FACESIZE);
    upright.lfCharSet = DEFAULT_CHARSET;
  }
  const auto open = [&](LONG height) {
    upright.lfHeight = height;
    Font opened(CreateFontIndirectW(&upright));
    if (!dc_ || !opened || SelectObject(dc_.Get(), opened.Get()) == nullptr) throw std::bad_alloc();
    font_ = std::move(opened);  // the previous one is no longer selected
    std::vector<std::byte> block = OutlineMetrics(dc_.Get());
    if (block.empty()) throw std::bad_alloc();
    return block;
  };
  const auto metrics_of = [](const std::vector<std::byte>& block) -> const OUTLINETEXTMETRICW& {
    return *reinterpret_cast<const OUTLINETEXTMETRICW*>(block.data());
  };

  // First as wanted, to find out the design units, then at that many pixels.
  std::vector<std::byte> block = open(font.lfHeight);
  const TEXTMETRICW as_wanted = metrics_of(block).otmTextMetrics;
  block = open(-static_cast<LONG>(metrics_of(block).otmEMSquare));
  if (SetGraphicsMode(transformed_dc_.Get(), GM_ADVANCED) == 0 ||
      SelectObject(transformed_dc_.Get(), font_.Get()) == nullptr) {
    throw std::bad_alloc();
  }
  const OUTLINETEXTMETRICW& metrics = metrics_of(block);
  names_ = {NameIn(block, metrics.otmpFamilyName), NameIn(block, metrics.otmpStyleName),
            NameIn(block, metrics.otmpFaceName)};
  Measure(metrics);
  map_ = ReadCharacterMap(dc_.Get());

  const wchar_t* wanted_name = font.lfFaceName + (font.lfFaceName[0] == L'@' ? 1 : 0);
  FileNames file = ReadFileNames(dc_.Get());
  if (file.every.empty()) file = {names_.family, {names_.family, names_.face}};
  family_ = file.family;
  substituted_ =
      *wanted_name != 0 && std::ranges::none_of(file.every, [&](const std::wstring& name) {
        return SameName(name, wanted_name);
      });
  const double em = metrics.otmEMSquare;
  const double cell = ascent_ + descent_;
  scale_y_ = font.lfHeight < 0   ? -font.lfHeight / em
             : font.lfHeight > 0 ? font.lfHeight / cell
                                 : (as_wanted.tmHeight - as_wanted.tmInternalLeading) / em;
  const LONG average = metrics.otmTextMetrics.tmAveCharWidth;
  scale_x_ = font.lfWidth != 0 && average != 0
                 ? std::abs(static_cast<double>(font.lfWidth)) / average
                 : scale_y_;
}

void TextFont::Measure(const OUTLINETEXTMETRICW& metrics) {
  constexpr DWORD kMaxpTable = 0x7078616D;
  uint16_t glyphs = 0;
  if (GetFontData(dc_.Get(), kMaxpTable, 4, &glyphs, sizeof glyphs) == sizeof glyphs) {
    glyph_count_ = SwapBytes(glyphs);
  }
  const TEXTMETRICW& text = metrics.otmTextMetrics;
  ascent_ = text.tmAscent;
  descent_ = text.tmDescent;
  underline_ = {metrics.otmsUnderscorePosition, static_cast<int>(metrics.otmsUnderscoreSize)};
  strike_out_ = {metrics.otmsStrikeoutPosition, static_cast<int>(metrics.otmsStrikeoutSize)};

  const bool italic = (metrics.otmfsSelection & FM_SEL_ITALIC) != 0;
  const bool bold = (metrics.otmfsSelection & FM_SEL_BOLD) != 0;
  if (text.tmItalic != 0 && !italic) font_type_ |= FO_SIM_ITALIC;
  if (text.tmWeight >= FW_BOLD && !bold) font_type_ |= FO_SIM_BOLD;

  metrics_.lItalicAngle = metrics.otmItalicAngle;
  metrics_.jWinCharSet = text.tmCharSet;
  // In a TEXTMETRIC the lowest bit means variable pitch; here it means fixed pitch.
  metrics_.jWinPitchAndFamily =
      static_cast<BYTE>((text.tmPitchAndFamily & 0xF0) |
                        (text.tmPitchAndFamily & TMPF_FIXED_PITCH ? VARIABLE_PITCH : FIXED_PITCH));
  // The page's font is chosen by the weight, including one that the platform simulates.
  metrics_.usWinWeight = static_cast<USHORT>(text.tmWeight);
  metrics_.flInfo = FM_INFO_TECH_TRUETYPE | FM_INFO_ARB_XFORMS | FM_INFO_RETURNS_OUTLINES |
                    FM_INFO_1BPP | FM_INFO_4BPP | FM_INFO_RIGHT_HANDED;
  metrics_.fsSelection = static_cast<USHORT>(metrics.otmfsSelection);
  metrics_.fsType = static_cast<USHORT>(metrics.otmfsType);
  metrics_.fwdUnitsPerEm = static_cast<FWORD>(metrics.otmEMSquare);
  metrics_.fwdWinAscender = static_cast<FWORD>(text.tmAscent);
  metrics_.fwdWinDescender = static_cast<FWORD>(text.tmDescent);
  metrics_.fwdMacAscender = static_cast<FWORD>(metrics.otmMacAscent);
  metrics_.fwdMacDescender = static_cast<FWORD>(metrics.otmMacDescent);
  metrics_.fwdMacLineGap = static_cast<FWORD>(metrics.otmMacLineGap);
  metrics_.fwdTypoAscender = static_cast<FWORD>(metrics.otmAscent);
  metrics_.fwdTypoDescender = static_cast<FWORD>(metrics.otmDescent);
  metrics_.fwdTypoLineGap = static_cast<FWORD>(metrics.otmLineGap);
  metrics_.fwdAveCharWidth = static_cast<FWORD>(text.tmAveCharWidth);
  metrics_.fwdMaxCharInc = static_cast<FWORD>(text.tmMaxCharWidth);
  metrics_.fwdCapHeight = static_cast<FWORD>(metrics.otmsCapEmHeight);
  metrics_.fwdXHeight = static_cast<FWORD>(metrics.otmsXHeight);
  metrics_.fwdUnderscoreSize = static_cast<FWORD>(metrics.otmsUnderscoreSize);
  metrics_.fwdUnderscorePosition = static_cast<FWORD>(metrics.otmsUnderscorePosition);
  metrics_.fwdStrikeoutSize = static_cast<FWORD>(metrics.otmsStrikeoutSize);
  metrics_.fwdStrikeoutPosition = static_cast<FWORD>(metrics.otmsStrikeoutPosition);
  metrics_.wcFirstChar = text.tmFirstChar;
  metrics_.wcLastChar = text.tmLastChar;
  metrics_.wcDefaultChar = text.tmDefaultChar;
  metrics_.wcBreakChar = text.tmBreakChar;
  metrics_.ptlBaseline = {1, 0};
  metrics_.ptlAspect = {1, 1};
  metrics_.ptlCaret = {metrics.otmsCharSlopeRun, metrics.otmsCharSlopeRise};
  metrics_.rclFontBox = {metrics.otmrcFontBox.left, metrics.otmrcFontBox.top,
                         metrics.otmrcFontBox.right, metrics.otmrcFontBox.bottom};
  metrics_.panose = metrics.otmPanoseNumber;
}

USHORT TextFont::GlyphOf(char32_t character) const {
  if (character > 0xFFFF) return map_.GlyphOf(character);
  const auto [entry, is_new] = glyphs_.try_emplace(character, USHORT{0});
  const auto unit = static_cast<wchar_t>(character);
  if (is_new) GetGlyphIndicesW(dc_.Get(), &unit, 1, &entry->second, 0);
  return entry->second;
}

std::optional<char32_t> TextFont::CharacterOf(USHORT glyph) const {
  if (characters_.empty()) characters_ = InvertCharacterMap(dc_.Get(), map_);
  const auto entry = characters_.find(glyph);
  if (glyph == 0 || entry == characters_.end()) return std::nullopt;
  return entry->second;
}

bool TextFont::Has(std::wstring_view text) const {
  for (size_t i = 0; i < text.size(); ++i) {
    if (ShowsNothing(text[i])) continue;
    const char32_t character = CharacterAt(text, i);
    if (GlyphOf(character) == 0) return false;
    if (character > 0xFFFF) ++i;
  }
  return true;
}

int TextFont::LookUp(std::map<USHORT, int>& advances, HDC dc, USHORT glyph) const {
  const auto [entry, is_new] = advances.try_emplace(glyph, 0);
  // For a glyph that the font lacks, the platform may return anything.
  if (is_new && glyph < glyph_count_) GetCharWidthI(dc, glyph, 1, nullptr, &entry->second);
  return entry->second;
}

int TextFont::AdvanceOf(USHORT glyph) const { return LookUp(advances_, dc_.Get(), glyph); }

double TextFont::AdvanceUnder(const XFORML& font_to_device, USHORT glyph) const {
  const XFORML& m = font_to_device;
  if (const std::array wanted = {m.eM11, m.eM12, m.eM21, m.eM22}; wanted != transform_) {
    const XFORM world = {m.eM11, m.eM12, m.eM21, m.eM22, 0, 0};
    SetWorldTransform(transformed_dc_.Get(), &world);
    transform_ = wanted;
    transformed_advances_.clear();
  }
  return std::round(LookUp(transformed_advances_, transformed_dc_.Get(), glyph) *
                    std::hypot(m.eM11, m.eM12));
}

}  // namespace quillo::host
