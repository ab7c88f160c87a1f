#include "fonts/inverse_map.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <random>

#include "fonts/font_tables.h"
#include "support/corpus.h"

namespace quillo::test {
namespace {

Words WordsOf(const std::vector<SegmentFields>& segments, const Words& glyphs = {}) {
  return ReadWords(MemoryCmap(Cmap(Subtable4(segments, glyphs))));
}

TEST(InverseMap, LastScannedCharacter_Stays) {
  const SegmentFields end = {0xFFFF, 0xFFFF, 1, 0};
  const struct {
    const char* name;
    std::vector<SegmentFields> segments;
    Words glyphs, table;
  } cases[] = {
      // clang-format off
      {"nothing mapped", {end}, {}, {}},
      {"only glyph 0", {{5, 5, 0xFFFB, 0}, end}, {}, {}},
      {"letters", {{0x41, 0x43, 0xFFC0, 0}, end}, {}, {1600, 0x41, 0x42, 0x43}},
      {"gap in the glyphs", {{0x41, 0x42, 0, 4}, end}, {3, 1}, {1600, 0x42, 1600, 0x41}},
      {"two characters for one glyph", {{0x20, 0x20, 0xFFE1, 0}, {0xA0, 0xA0, 0xFF61, 0}, end}, {},
       {1600, 0xA0}},
      {"unmapped character of a segment", {{0x41, 0x43, 0, 4}, end}, {1, 0, 0}, {0x43, 0x41}},
      {"entries beyond the data", {{0x41, 0x49, 0, 4}, end}, {1}, {0x49, 0x41}},
      {"segment after the terminator", {{1, 1, 0, 0}, end, {2, 2, 0, 0}}, {}, {1600, 1}},
      {"falling order", {{8, 9, 0xFFF9, 0}, {1, 2, 0, 0}, end}, {}, {2, 8, 9}},
      {"overlap: the first segment maps, the last stays", {{1, 4, 0, 4}, {2, 2, 9, 0}}, {1, 1, 1, 1},
       {1600, 2}},
      {"last character included", {{0xFFFD, 0xFFFF, 4, 0}}, {}, {1600, 0xFFFD, 0xFFFE, 0xFFFF}},
      {"glyph 65535 leaves no size", {{1, 2, 0xFFFD, 0}}, {}, {}},
      // clang-format on
  };
  for (const auto& c : cases) {
    const Words words = WordsOf(c.segments, c.glyphs);
    EXPECT_EQ(InverseMap(words), c.table) << c.name;
  }
}

/// Digests (FNV-1a over the entries) of maps that were computed character by character.
TEST(InverseMap, RandomSegments_BecomeKnownMaps) {
  std::ifstream golden(std::filesystem::path(QUILLO_SOURCE_DIR) /
                       "tests/corpus/fonts/random_maps.txt");
  std::mt19937 random(20240601);
  const auto below = [&](uint32_t n) { return static_cast<uint16_t>(random() % n); };
  for (int round = 0; round < 60; ++round) {
    const bool rising = round % 2 == 0;
    std::vector<SegmentFields> segments;
    uint32_t position = 0;
    for (uint32_t left = 1 + below(12); left != 0; --left) {
      const uint32_t start = rising ? position + below(3000) : below(65535);
      const uint32_t end = std::min<uint32_t>(65535, start + below(rising ? 2000 : 9000));
      position = end + 1;
      // Low glyphs, so that characters meet; now and then any.
      const auto delta = static_cast<uint16_t>(below(4) == 0 ? random() : below(300) - start);
      const uint32_t uses_glyphs = below(2);
      const auto range_offset = static_cast<uint16_t>(uses_glyphs * 2 * (left + below(40)));
      segments.push_back(
          {static_cast<uint16_t>(start), static_cast<uint16_t>(end), delta, range_offset});
    }
    Words glyphs(below(3000));
    for (uint16_t& glyph : glyphs) {
      glyph = below(400);
      if (below(5) == 0) glyph = 0;
    }
    uint32_t digest = 2166136261u, expected = 0;
    for (const uint16_t entry : InverseMap(WordsOf(segments, glyphs))) {
      digest = (digest ^ entry) * 16777619u;
    }
    golden >> std::hex >> expected;
    EXPECT_EQ(digest, expected) << "round " << round;
  }
}

TEST(InverseMap, MostOverlaps_TakeNoLongerThanTheCharacters) {
  // A scan by the letter would take half a thousand million steps for each pass.
  std::vector<SegmentFields> segments(fonts::kMaxCmap4Segments, {1, 0xFFFE, 0, 0});
  segments.back() = {0, 0xFFFD, 0, 0};
  const Words table = InverseMap(WordsOf(segments));
  ASSERT_EQ(table.size(), 0xFFFFu);
  for (uint32_t glyph = 0; glyph < table.size(); ++glyph) ASSERT_EQ(table[glyph], glyph);
}

TEST(InverseMap, FontCorpus_LeadsBackToTheGlyphs) {
  for (const char* folder : {"fonts", "fonts-broken"}) {
    size_t with_map = 0;
    const auto files = CorpusFiles(folder);
    if (files.empty()) GTEST_SKIP() << "no corpus: ../shared/corpus/" << folder << " is absent";
    for (const auto& path : files) {
      const auto file = ReadFile(path);
      const Words words = ReadWords(MemoryCmap(FindTable(file, kCmapTag)));
      if (words.empty()) continue;
      const Words table = InverseMap(words);
      const fonts::Cmap4Table cmap(words);
      for (size_t glyph = 1; glyph < table.size(); ++glyph) {
        const uint16_t character = table[glyph];
        ASSERT_TRUE(character == fonts::kNoCharacter || cmap.GlyphOf(character) == glyph) << path;
      }
      with_map += !table.empty();
    }
    EXPECT_GT(with_map, 0u) << folder;
  }
}

}  // namespace
}  // namespace quillo::test
