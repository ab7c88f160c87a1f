#include "fonts/cmap4_table.h"

#include <gtest/gtest.h>

#include "fonts/font_tables.h"

namespace quillo::test {
namespace {

using fonts::Cmap4Table;

const SegmentFields kAscii = {0x20, 0x7E, static_cast<uint16_t>(-29), 0};
const SegmentFields kEnd = {0xFFFF, 0xFFFF, 1, 0};

TEST(ReadCmap4, EncodingRecords_LastOneGivesTheSubtable) {
  Words subtables = Subtable4({kAscii, kEnd});
  const auto format12 = static_cast<uint16_t>(2 * subtables.size());
  subtables.insert(subtables.end(), {12, 0, 0, 28, 0, 0, 0, 1});
  const struct {
    std::vector<EncodingFields> records;
    bool readable;
  } cases[] = {
      {{}, false},
      {{{3, 1}}, true},
      {{{3, 0}}, true},
      {{{1, 0}}, false},
      {{{0, 3}, {1, 0, format12}, {3, 1}}, true},
      {{{3, 1}, {3, 10, format12}}, false},
      {{{3, 1, format12}, {3, 10}}, true},
  };
  for (const auto& c : cases) {
    EXPECT_NE(ReadWords(MemoryCmap(Cmap(subtables, c.records))).empty(), c.readable) << &c - cases;
  }
}

TEST(ReadCmap4, Truncations_FailInFrontOfTheSegmentsAndReadZeroBehind) {
  const auto whole = Cmap(Subtable4({kAscii, {0x100, 0x101, 0, 4}, kEnd}, {7, 8}));
  constexpr uint32_t kSegments = 4 + 8 + 14;
  for (size_t size = 0; size < whole.size(); ++size) {
    const Words words = ReadWords(MemoryCmap(Bytes(whole).first(size)));
    EXPECT_EQ(words.empty(), size < kSegments) << size;
    if (size + 2 == whole.size()) {
      EXPECT_EQ(Cmap4Table(words).GlyphOf(0x100), 7);
      EXPECT_EQ(Cmap4Table(words).GlyphOf(0x101), 0);
    }
  }
  EXPECT_TRUE(ReadWords(MemoryCmap(whole, /*fails_from=*/kSegments)).empty());
  MemoryCmap source(whole);
  Words too_short(Cmap4Size(source) / 2 - 1);
  EXPECT_FALSE(ReadCmap4(source, too_short));
}

TEST(ReadCmap4, StatedLength_MustHoldTheSegments) {
  const struct {
    uint16_t length;
    uint32_t size;
  } cases[] = {{13, 0}, {31, 0}, {32, 38}, {33, 39}, {0xFFFF, 0xFFFF + 6}};
  for (const auto& c : cases) {
    const auto cmap = Cmap(Subtable4({kAscii, kEnd}, {}, c.length));
    MemoryCmap source(cmap);
    EXPECT_EQ(Cmap4Size(source), c.size);
    EXPECT_EQ(ReadWords(source).empty(), c.size == 0) << c.length;
  }
}

TEST(Cmap4Table, GlyphOf_FollowsTheFirstSegmentThatEndsAtOrBehind) {
  const struct {
    const char* name;
    std::vector<SegmentFields> segments;
    Words glyphs;
    uint16_t character, glyph, mapped_count;
  } cases[] = {
      // clang-format off
      {"delta", {kAscii, kEnd}, {}, 'A', 36, 96},
      {"below the start", {kAscii}, {}, 0x1F, 0, 95},
      {"behind the last end", {kAscii}, {}, 0x7F, 0, 95},
      {"delta wraps", {{0x10, 0x20, 0xFFF8, 0}}, {}, 0x20, 0x18, 17},
      {"entry", {{0x40, 0x42, 0, 2}}, {5, 6, 7}, 0x41, 6, 3},
      {"entry with delta", {{0x40, 0x42, 10, 2}}, {5, 6, 7}, 0x42, 17, 3},
      {"entry 0 takes no delta", {{0x40, 0x42, 10, 2}}, {5, 0, 7}, 0x41, 0, 2},
      {"odd range offset", {{0x40, 0x42, 0, 3}}, {5, 6, 7}, 0x40, 5, 3},
      {"entries end inside the segment", {{0x40, 0x4F, 0, 2}}, {5, 6}, 0x42, 0, 2},
      {"range offset far behind", {{0x40, 0x4F, 1, 0xFFFF}}, {5, 6}, 0x40, 0, 0},
      {"earlier segment hides", {{0x80, 0x90, 0, 0}, {0x20, 0x7E, 0, 0}}, {}, 0x41, 0, 112},
      {"earlier segment decides", {{0x20, 0x7E, 1, 0}, {0x40, 0x4F, 9, 0}}, {}, 0x41, 0x42, 111},
      {"start behind end", {{0x50, 0x40, 0, 0}, {0x20, 0x7E, 0, 0}}, {}, 0x45, 0x45, 95},
      {"everything; the count wraps", {{0, 0xFFFF, 1, 0}}, {}, 0xFFFF, 0, 0},
      {"nothing", {}, {}, 'A', 0, 0},
      // clang-format on
  };
  for (const auto& c : cases) {
    const Words words = ReadWords(MemoryCmap(Cmap(Subtable4(c.segments, c.glyphs))));
    EXPECT_EQ(Cmap4Table(words).GlyphOf(c.character), c.glyph) << c.name;
    EXPECT_EQ(Cmap4Table(words).MappedCount(), c.mapped_count) << c.name;
  }
  EXPECT_EQ(Cmap4Table().GlyphOf('A'), 0);
}

}  // namespace
}  // namespace quillo::test
