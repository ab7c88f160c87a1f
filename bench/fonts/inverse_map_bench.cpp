// Building the glyph-to-character table: this system against HarfBuzz, over the same format-4
// subtable in memory. Prints the ratio of the two medians per font; exits with 1 below 3.
#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <hb.h>
#include <map>
#include <string>

#include "fonts/cmap_builder.h"
#include "fonts/font_bytes.h"
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
    const Bytes exact = subtable.first(test::BigEndian(subtable, 2, 2));
    tables.cmap = test::UnicodeCmap({exact.begin(), exact.end()});
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
    if (!ReadCmap4(source, words)) std::abort();
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

/// Keeps the medians by benchmark name.
class MedianReporter : public benchmark::ConsoleReporter {
 public:
  MedianReporter() : ConsoleReporter(OO_None) {}
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.aggregate_name == "median")
        medians_[run.run_name.function_name] = run.GetAdjustedRealTime();
    }
  }
  [[nodiscard]] double Median(const std::string& name) const { return medians_.at(name); }

 private:
  std::map<std::string, double> medians_;
};

}  // namespace

int main(int argc, char** argv) {
  constexpr double kWantedRatio = 3;
  const struct {
    const char* name;
    const char* path;
  } fonts[] = {
      {"LiberationSans", "/usr/share/fonts/truetype/liberation/LiberationSans-Regular.ttf"},
      {"DroidSansFallback", "/usr/share/fonts-droid-fallback/truetype/DroidSansFallback.ttf"},
  };
  benchmark::Initialize(&argc, argv);
  for (const auto& font : fonts) {
    const FontTables tables = LoadFont(font.path);
    if (tables.cmap.empty()) {
      std::fprintf(stderr, "%s has no format-4 subtable or is absent\n", font.path);
      return 2;
    }
    const auto add = [&](const char* side, auto function) {
      benchmark::RegisterBenchmark((std::string(side) + font.name).c_str(), function, tables)
          ->Repetitions(7)
          ->ReportAggregatesOnly()
          ->Unit(benchmark::kMicrosecond);
    };
    add("Own_", Own);
    add("HarfBuzz_", HarfBuzz);
  }
  MedianReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  bool fast_enough = true;
  for (const auto& font : fonts) {
    const double ratio = reporter.Median(std::string("HarfBuzz_") + font.name) /
                         reporter.Median(std::string("Own_") + font.name);
    std::printf("%s: %.1f times faster\n", font.name, ratio);
    fast_enough &= ratio >= kWantedRatio;
  }
  return fast_enough ? 0 : 1;
}
