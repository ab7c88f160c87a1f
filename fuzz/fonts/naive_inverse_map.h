#pragma once

#include <cstdint>

#include "fonts/font_tables.h"

namespace quillo::test {

/// The inverse map by the letter of its definition: two passes over every character of every
/// segment, a scan from the first segment for each. Empty where there is none.
inline Words NaiveInverseMap(const Words& words) {
  const size_t count = words[3] / 2u;
  const auto end = [&](size_t i) { return words[7 + i]; };
  const auto start = [&](size_t i) { return words[8 + count + i]; };
  const auto delta = [&](size_t i) { return words[8 + 2 * count + i]; };
  const size_t range_offsets = 8 + 3 * count;

  Words glyphs(65536);  // by character
  for (uint32_t c = 0; c < 65536; ++c) {
    size_t i = 0;
    while (i < count && end(i) < c) ++i;
    if (i == count || c < start(i)) continue;
    uint32_t entry = c;
    if (const uint16_t offset = words[range_offsets + i]; offset != 0) {
      const size_t place = range_offsets + i + offset / 2u + (c - start(i));
      entry = place < words.size() ? words[place] : 0;
      if (entry == 0) continue;
    }
    glyphs[c] = static_cast<uint16_t>(entry + delta(i));
  }

  const auto for_each_character = [&](auto visit) {
    for (size_t i = 0; i < count && !(start(i) == 0xFFFF && end(i) == 0xFFFF); ++i) {
      for (uint32_t c = start(i); c <= end(i); ++c) visit(c);
    }
  };
  uint16_t largest = 0;
  for_each_character([&](uint32_t c) { largest = std::max(largest, glyphs[c]); });
  if (largest == 0) return {};
  Words table(static_cast<uint16_t>(largest + 1), 1600);
  if (!table.empty()) {
    for_each_character([&](uint32_t c) { table[glyphs[c]] = static_cast<uint16_t>(c); });
  }
  return table;
}

}  // namespace quillo::test
