#include "fonts/inverse_map.h"

#include <gtest/gtest.h>
#include <random>

#include "fonts/cmap_builder.h"
#include "fonts/font_bytes.h"
#include "fonts/naive_inverse_map.h"
#include "support/corpus.h"

namespace quillo::test {
namespace {

std::vector<uint16_t> WordsOf(const std::vector<SegmentFields>& segments,
                              const std::vector<uint16_t>& glyphs = {}) {
  const auto bytes = UnicodeCmap(Subtable4(segments, glyphs));
  MemoryCmap source(bytes);
  return ReadWords(source).value();
}

TEST(InverseMap, LastScannedCharacter_Stays) {
  const SegmentFields terminator = {0xFFFF, 0xFFFF, 1, 0};
  const struct {
    const char* name;
    std::vector<SegmentFields> segments;
    std::vector<uint16_t> glyphs;
    std::vector<uint16_t> table;
  } cases[] = {
      {"nothing mapped", {terminator}, {}, {}},
      {"only glyph 0", {{5, 5, 0xFFFB, 0}, terminator}, {}, {}},
      {"letters", {{0x41, 0x43, 0xFFC0, 0}, terminator}, {}, {1600, 0x41, 0x42, 0x43}},
      {"gap in the glyphs", {{0x41, 0x42, 0, 4}, terminator}, {3, 1}, {1600, 0x42, 1600, 0x41}},
      {"two characters for one glyph",
       {{0x20, 0x20, 0xFFE3, 0}, {0xA0, 0xA0, 0xFF63, 0}, terminator},
       {},
       {1600, 1600, 1600, 0xA0}},
      {"unmapped character of a segment",
       {{0x41, 0x43, 0, 4}, terminator},
       {1, 0, 0},
       {0x43, 0x41}},
      {"entries behind the data", {{0x41, 0x49, 0, 4}, terminator}, {1}, {0x49, 0x41}},
      {"segment behind the terminator", {{1, 1, 0, 0}, terminator, {2, 2, 0, 0}}, {}, {1600, 1}},
      {"falling order", {{8, 9, 0xFFF9, 0}, {1, 2, 0, 0}, terminator}, {}, {2, 8, 9}},
      {"later overlap decides what stays, not which glyph",
       {{1, 4, 0, 4}, {2, 2, 9, 0}},
       {1, 1, 1, 1},
       {1600, 2}},
      {"last character included", {{0xFFFD, 0xFFFF, 4, 0}}, {}, {1600, 0xFFFD, 0xFFFE, 0xFFFF}},
      {"glyph 65535 leaves no size", {{1, 2, 0xFFFD, 0}}, {}, {}},
  };
  for (const auto& c : cases) {
    const auto words = WordsOf(c.segments, c.glyphs);
    EXPECT_EQ(NaiveInverseMap(words), c.table) << c.name;
    EXPECT_EQ(FastInverseMap(words), c.table) << c.name;
  }
}

TEST(InverseMap, RandomSegments_EqualTheNaiveMap) {
  std::mt19937 random(20240601);
  const auto below = [&](uint32_t n) { return static_cast<uint16_t>(random() % n); };
  for (int round = 0; round < 100; ++round) {
    const bool sorted = round % 2 == 0;
    std::vector<SegmentFields> segments;
    uint32_t position = 0;
    const size_t count = 1 + below(12);
    for (size_t i = 0; i < count; ++i) {
      const uint32_t start = sorted ? position + below(3000) : random() % 65536;
      const uint32_t end = std::min<uint32_t>(65535, start + below(sorted ? 2000 : 9000));
      if (start > 65535) break;
      position = end + 1;
      const auto to_glyphs = static_cast<uint16_t>(2 * (count - i) + 2 * below(40));
      // Deltas that are mostly negative give low glyphs, so that characters meet.
      segments.push_back({static_cast<uint16_t>(start), static_cast<uint16_t>(end),
                          static_cast<uint16_t>(below(4) == 0 ? random() : below(300) - start),
                          below(2) == 0 ? to_glyphs : uint16_t{0}});
    }
    std::vector<uint16_t> glyphs(below(3000));
    for (uint16_t& glyph : glyphs) glyph = below(5) == 0 ? uint16_t{0} : below(400);
    const auto words = WordsOf(segments, glyphs);
    ASSERT_EQ(FastInverseMap(words), NaiveInverseMap(words)) << "round " << round;
  }
}

TEST(InverseMap, MostOverlaps_TakeNoLongerThanTheCharacters) {
  // A scan by the letter would take half a thousand million steps for each pass.
  std::vector<SegmentFields> segments(fonts::kMostCmap4Segments, {1, 0xFFFE, 0, 0});
  segments.back() = {0, 0xFFFD, 0, 0};
  const auto table = FastInverseMap(WordsOf(segments));
  ASSERT_EQ(table.size(), 0xFFFFu);
  for (uint32_t glyph = 0; glyph < table.size(); ++glyph) ASSERT_EQ(table[glyph], glyph);
}

class FontCorpus : public testing::TestWithParam<const char*> {};

TEST_P(FontCorpus, EveryFont_GivesTheNaiveMapOrNone) {
  const auto files = CorpusFiles(GetParam());
  if (files.empty()) GTEST_SKIP() << "no corpus: ../shared/corpus/" << GetParam() << " is absent";
  size_t with_map = 0;
  for (const auto& path : files) {
    const auto file = ReadFile(path);
    MemoryCmap source(FindTable(file, kCmapTag));
    const auto words = ReadWords(source);
    if (!words) continue;
    const auto table = FastInverseMap(*words);
    EXPECT_EQ(table, NaiveInverseMap(*words)) << path;
    with_map += !table.empty();
    const fonts::Cmap4Table cmap(*words);
    for (size_t glyph = 1; glyph < table.size(); ++glyph) {
      if (table[glyph] == fonts::kNoCharacter) continue;
      ASSERT_EQ(cmap.GlyphOf(table[glyph]), glyph) << path;
    }
  }
  EXPECT_GT(with_map, 0u);
  RecordProperty("fonts_with_map", static_cast<int>(with_map));
}

INSTANTIATE_TEST_SUITE_P(Folders, FontCorpus, testing::Values("fonts", "fonts-broken"));

}  // namespace
}  // namespace quillo::test
