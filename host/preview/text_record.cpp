#include "host/preview/text_record.h"

#include "base/arithmetic.h"
#include "base/bytes.h"
#include "host/engine/character_map.h"
#include "host/engine/clusters.h"

namespace quillo::host {

std::vector<std::byte> WithGlyphOfPair(HDC dc, const ENHMETARECORD& record) {
  constexpr size_t kText = offsetof(EMREXTTEXTOUTW, emrtext);
  const Bytes bytes(reinterpret_cast<const std::byte*>(&record), record.nSize);
  if (record.iType != EMR_EXTTEXTOUTW) return {};
  auto text = LoadOrZero<EMRTEXT>(bytes, kText);
  const wchar_t units[] = {LoadOrZero<wchar_t>(bytes, text.offString),
                           LoadOrZero<wchar_t>(bytes, size_t{text.offString} + sizeof(wchar_t))};
  if (text.nChars != 2 || (text.fOptions & ETO_GLYPH_INDEX) != 0 || !IsPair({units, 2}, 0) ||
      !RangeFits(bytes.size(), text.offString, sizeof units)) {
    return {};
  }
  const uint16_t glyph = ReadCharacterMap(dc).GlyphOf(CharacterAt({units, 2}, 0));
  if (glyph == 0) return {};
  std::vector<std::byte> changed(bytes.begin(), bytes.end());
  text.nChars = 1;
  text.fOptions |= ETO_GLYPH_INDEX;
  Store(changed, kText, text);
  Store(changed, text.offString, glyph);
  return changed;
}

}  // namespace quillo::host
