#include "host/engine/character_map.h"

#include <algorithm>
#include <numeric>
#include <string>

#include "base/bytes.h"

namespace quillo::host {

namespace {

constexpr DWORD kCmapTable = 0x70616D63;
constexpr uint16_t kWindows = 3;  // platform
enum Encoding : uint16_t { kSymbols = 0, kBasicPlane = 1, kFullRange = 10 };

std::vector<CharacterMap::Group> ReadGroups(Bytes table, size_t subtable) {
  const auto number = [&](size_t at) { return SwapBytes(LoadOrZero<uint32_t>(table, at)); };
  constexpr size_t kHeader = 16, kGroup = 12;
  std::vector<CharacterMap::Group> groups;
  const size_t count = number(subtable + 12);
  for (size_t i = 0; i < count; ++i) {
    const size_t at = subtable + kHeader + i * kGroup;
    if (at + kGroup > table.size()) break;
    groups.push_back({number(at), number(at + 4), number(at + 8)});
  }
  return groups;
}

}  // namespace

uint16_t CharacterMap::GlyphOf(char32_t character) const {
  const auto group = std::ranges::lower_bound(groups, character, {}, &Group::last);
  if (group == groups.end() || character < group->first) return 0;
  return static_cast<uint16_t>(group->glyph + (character - group->first));
}

CharacterMap ReadCharacterMap(HDC dc) {
  CharacterMap map;
  const DWORD size = GetFontData(dc, kCmapTable, 0, nullptr, 0);
  if (size == GDI_ERROR) return map;
  std::vector<std::byte> table(size);
  if (GetFontData(dc, kCmapTable, 0, table.data(), size) == GDI_ERROR) return map;
  const auto number = [&](size_t at) { return SwapBytes(LoadOrZero<uint16_t>(table, at)); };

  bool of_windows = false;
  uint16_t last_format = 0;
  const size_t count = number(2);
  for (size_t i = 0; i < count; ++i) {
    const size_t record = 4 + 8 * i;
    const uint16_t encoding = number(record + 2);
    const size_t subtable = SwapBytes(LoadOrZero<uint32_t>(table, record + 4));
    last_format = number(subtable);
    if (number(record) != kWindows) continue;
    of_windows = of_windows || encoding == kSymbols || encoding == kBasicPlane;
    map.symbols = map.symbols || encoding == kSymbols;
    if (encoding == kFullRange && last_format == 12) map.groups = ReadGroups(table, subtable);
  }
  map.invertible = of_windows && last_format == 4;
  return map;
}

std::map<uint16_t, char32_t> InvertCharacterMap(HDC dc, const CharacterMap& map) {
  std::map<uint16_t, char32_t> characters;
  std::vector<std::byte> block(GetFontUnicodeRanges(dc, nullptr));
  auto* set = reinterpret_cast<GLYPHSET*>(block.data());
  if (!block.empty() && GetFontUnicodeRanges(dc, set) != 0) {
    for (DWORD i = 0; i < set->cRanges; ++i) {
      std::wstring range(set->ranges[i].cGlyphs, L'\0');
      std::iota(range.begin(), range.end(), set->ranges[i].wcLow);
      std::vector<WORD> glyphs(range.size());
      if (GetGlyphIndicesW(dc, range.data(), static_cast<int>(range.size()), glyphs.data(), 0) ==
          GDI_ERROR) {
        continue;
      }
      for (size_t at = 0; at < range.size(); ++at) characters.try_emplace(glyphs[at], range[at]);
    }
  }
  for (const auto& group : map.groups) {
    const uint32_t first = std::max<uint32_t>(group.first, 0x10000);
    // No font has more glyphs than 16 bits can number.
    for (uint32_t c = first; c <= group.last && c - group.first + group.glyph <= 0xFFFF; ++c) {
      characters.try_emplace(static_cast<uint16_t>(group.glyph + (c - group.first)), c);
    }
  }
  return characters;
}

}  // namespace quillo::host
