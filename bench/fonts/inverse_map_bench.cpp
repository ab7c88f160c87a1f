// Building the glyph-to-character table: this system beside HarfBuzz, over the same format-4
// subtable in memory.
#include <benchmark/benchmark.h>
#include <hb.h>

#include "bench/pair_reporter.h"
#include "fonts/font_tables.h"
#include "fonts/inverse_map.h"
#include "support/corpus.h"

namespace {

using namespace quillo;

struct FontTables {
  std::vector<std::byte> cmap;  // one record (3,1) and its format-4 subtable
  std::vector<std::byte> maxp;
};

FontTables LoadFont(const char* path) {
  const auto file = test::ReadFile(path);
  const Bytes cmap = test::FindTable(file, test::kCmapTag);
  FontTables tables;
  for (size_t record = 4; record < 4 + 8 * test::BigEndian(cmap, 2, 2); record += 8) {
    if (test::BigEndian(cmap, record, 4) != 0x00030001) continue;
    const Bytes subtable = cmap.subspan(test::BigEndian(cmap, record + 4, 4));
    test::Words words(test::BigEndian(subtable, 2, 2) / 2);
    for (size_t i = 0; i < words.size(); ++i) {
      words[i] = static_cast<uint16_t>(test::BigEndian(subtable, 2 * i, 2));
    }
    tables.cmap = test::Cmap(words);
  }
  const Bytes maxp = test::FindTable(file, HB_TAG('m', 'a', 'x', 'p'));
  tables.maxp.assign(maxp.begin(), maxp.end());
  return tables;
}

/// Reads the subtable as well, which HarfBuzz does in place.
void Own(benchmark::State& state, const FontTables& tables) {
  std::vector<uint16_t> words;
  std::vector<uint16_t> table;
  for (auto _ : state) {
    test::MemoryCmap source(tables.cmap);
    words.assign((Cmap4Size(source) + 1) / 2, 0);
    if (words.empty() || !ReadCmap4(source, words)) return state.SkipWithError("no such font");
    const fonts::Cmap4Table cmap(words);
    table.resize(InverseMapSize(cmap));
    FillInverseMap(cmap, table);
    benchmark::DoNotOptimize(table.data());
  }
  state.counters["characters"] = fonts::Cmap4Table(words).MappedCount();
}

hb_face_t* MakeFace(const FontTables& tables) {
  hb_face_t* face = hb_face_builder_create();
  const auto add = [face](hb_tag_t tag, Bytes table) {
    hb_blob_t* blob = hb_blob_create(reinterpret_cast<const char*>(table.data()),
                                     static_cast<unsigned>(table.size()), HB_MEMORY_MODE_READONLY,
                                     nullptr, nullptr);
    hb_face_builder_add_table(face, tag, blob);
    hb_blob_destroy(blob);
  };
  add(HB_TAG('c', 'm', 'a', 'p'), tables.cmap);
  add(HB_TAG('m', 'a', 'x', 'p'), tables.maxp);
  return face;
}

/// The face is made outside of the timing.
void HarfBuzz(benchmark::State& state, const FontTables& tables) {
  hb_face_t* face = MakeFace(tables);
  hb_font_t* font = hb_font_create(face);
  std::vector<uint16_t> table;
  unsigned characters = 0;
  for (auto _ : state) {
    table.assign(hb_face_get_glyph_count(face), fonts::kNoCharacter);
    hb_set_t* unicodes = hb_set_create();
    hb_face_collect_unicodes(face, unicodes);
    hb_codepoint_t character = HB_SET_VALUE_INVALID;
    while (hb_set_next(unicodes, &character)) {
      hb_codepoint_t glyph = 0;
      if (hb_font_get_nominal_glyph(font, character, &glyph) && glyph < table.size()) {
        table[glyph] = static_cast<uint16_t>(character);
      }
    }
    characters = hb_set_get_population(unicodes);
    hb_set_destroy(unicodes);
    benchmark::DoNotOptimize(table.data());
  }
  state.counters["characters"] = characters;
  hb_font_destroy(font);
  hb_face_destroy(face);
}

const FontTables kLiberation =
    LoadFont("/usr/share/fonts/truetype/liberation/LiberationSans-Regular.ttf");
const FontTables kDroid =
    LoadFont("/usr/share/fonts-droid-fallback/truetype/DroidSansFallback.ttf");

BENCHMARK_CAPTURE(Own, LiberationSans, kLiberation);
BENCHMARK_CAPTURE(HarfBuzz, LiberationSans, kLiberation);
BENCHMARK_CAPTURE(Own, DroidSansFallback, kDroid);
BENCHMARK_CAPTURE(HarfBuzz, DroidSansFallback, kDroid);

const quillo::bench::Pair kPairs[] = {
    {"inverse glyph map, Liberation Sans", "Own/LiberationSans", "HarfBuzz/LiberationSans",
     "HarfBuzz", 7},
    {"inverse glyph map, Droid Sans Fallback", "Own/DroidSansFallback",
     "HarfBuzz/DroidSansFallback", "HarfBuzz", 50},
};

}  // namespace

int main(int argc, char** argv) { quillo::bench::RunPairs(argc, argv, kPairs); }
