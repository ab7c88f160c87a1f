// Font files (the seeds: any folder of fonts) or bare 'cmap' tables through reader and inverse map.
#include <cstdlib>

#include "fonts/font_tables.h"
#include "naive_inverse_map.h"

namespace {

using namespace quillo;

void Check(bool holds) {
  if (!holds) std::abort();
}

void TryTable(Bytes table) {
  const test::Words words = test::ReadWords(test::MemoryCmap(table));
  if (words.empty()) return;
  const fonts::Cmap4Table cmap(words);
  Check(cmap.SegmentCount() != 0 || cmap.MappedCount() == 0);
  const auto map = test::InverseMap(words);
  for (size_t glyph = 1; glyph < map.size(); ++glyph) {
    Check(map[glyph] == fonts::kNoCharacter || cmap.GlyphOf(map[glyph]) == glyph);
  }
  // The naive map takes seconds for thousands of overlapping segments.
  if (cmap.SegmentCount() < 64) Check(map == test::NaiveInverseMap(words));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const Bytes input = std::as_bytes(std::span(data, size));
  TryTable(test::FindTable(input, test::kCmapTag));
  TryTable(input);
  return 0;
}
