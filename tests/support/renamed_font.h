#pragma once

#include "base/windows.h"

#include <string_view>
#include <vector>

#include "fonts/font_tables.h"
#include "support/corpus.h"

namespace quillo::test {

/// A copy of Liberation Sans whose family is `family`.
inline std::vector<std::byte> RenamedFont(std::u16string_view family) {
  auto font = ReadFile("Z:/usr/share/fonts/truetype/liberation/LiberationSans-Regular.ttf");
  // A 'name' table of family (1), style (2) and full name (4), for Windows in US English.
  constexpr std::u16string_view kStyle = u"Regular";
  const auto family_bytes = static_cast<uint16_t>(2 * family.size());
  Words words = {0, 3, 6 + 3 * 12};
  words.insert(words.end(), {3, 1, 0x409, 1, family_bytes, 0});
  words.insert(words.end(), {3, 1, 0x409, 2, 2 * kStyle.size(), family_bytes});
  words.insert(words.end(), {3, 1, 0x409, 4, family_bytes, 0});
  words.insert(words.end(), family.begin(), family.end());
  words.insert(words.end(), kStyle.begin(), kStyle.end());
  const auto table = BigEndianBytes(words);

  for (size_t record = 12; record < 12 + 16 * BigEndian(font, 4, 2); record += 16) {
    if (BigEndian(font, record, 4) != 0x6E616D65) continue;  // "name"
    Store(font, record + 8, SwapBytes(static_cast<uint32_t>(font.size())));
    Store(font, record + 12, SwapBytes(static_cast<uint32_t>(table.size())));
  }
  font.insert(font.end(), table.begin(), table.end());
  return font;
}

}  // namespace quillo::test
