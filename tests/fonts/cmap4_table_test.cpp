#include "fonts/cmap4_table.h"

#include <gtest/gtest.h>

#include "fonts/cmap_builder.h"
#include "fonts/font_bytes.h"

namespace quillo::test {
namespace {

using fonts::Cmap4Table;

const SegmentFields kAscii = {0x20, 0x7E, static_cast<uint16_t>(-29), 0};
const SegmentFields kTerminator = {0xFFFF, 0xFFFF, 1, 0};

std::vector<uint16_t> WordsOf(const std::vector<SegmentFields>& segments,
                              const std::vector<uint16_t>& glyphs = {}) {
  const auto bytes = UnicodeCmap(Subtable4(segments, glyphs));
  MemoryCmap source(bytes);
  return ReadWords(source).value();
}

TEST(ReadCmap4, EncodingRecords_LastOneGivesTheSubtable) {
  const auto good = Subtable4({kAscii, kTerminator});
  const auto format12 = BigEndianBytes().U16(12).U16(0).U32(28).U32(0).U32(1).Get();
  const struct {
    const char* name;
    std::vector<EncodingFields> records;
    std::vector<std::vector<std::byte>> subtables;
    bool readable;
  } cases[] = {
      {"none", {}, {good}, false},
      {"Unicode", {{3, 1, 0}}, {good}, true},
      {"symbol", {{3, 0, 0}}, {good}, true},
      {"Macintosh only", {{1, 0, 0}}, {good}, false},
      {"shared with other platforms", {{0, 3, 0}, {1, 0, 1}, {3, 1, 0}}, {good, format12}, true},
      {"last is format 12", {{3, 1, 0}, {3, 10, 1}}, {good, format12}, false},
      {"last is another format 4", {{3, 1, 1}, {3, 10, 0}}, {good, format12}, true},
  };
  for (const auto& c : cases) {
    const auto bytes = Cmap(c.records, c.subtables);
    MemoryCmap source(bytes);
    EXPECT_EQ(ReadWords(source).has_value(), c.readable) << c.name;
  }
}

TEST(ReadCmap4, EveryTruncation_FailsInFrontOfTheSegmentsAndReadsZeroBehind) {
  const auto whole = UnicodeCmap(Subtable4({kAscii, {0x100, 0x101, 0, 4}, kTerminator}, {7, 8}));
  constexpr size_t kSegmentsStart = 4 + 8 + 14;
  for (size_t size = 0; size < whole.size(); ++size) {
    MemoryCmap source(Bytes(whole).first(size));
    const auto words = ReadWords(source);
    ASSERT_EQ(words.has_value(), size >= kSegmentsStart) << size;
    if (words && size + 2 == whole.size()) {
      EXPECT_EQ(Cmap4Table(*words).GlyphOf(0x100), 7);
      EXPECT_EQ(Cmap4Table(*words).GlyphOf(0x101), 0);
    }
  }
}

TEST(ReadCmap4, FailedReadOfTheSegments_Fails) {
  const auto bytes = UnicodeCmap(Subtable4({kAscii, kTerminator}));
  MemoryCmap source(bytes, /*fails_from=*/4 + 8 + 14);
  EXPECT_EQ(Cmap4Size(source), bytes.size() - 12 + 6);
  EXPECT_FALSE(ReadWords(source));
}

TEST(ReadCmap4, BlockShorterThanTheCopy_Fails) {
  const auto bytes = UnicodeCmap(Subtable4({kAscii, kTerminator}));
  MemoryCmap source(bytes);
  std::vector<uint16_t> words(Cmap4Size(source) / 2 - 1);
  EXPECT_FALSE(ReadCmap4(source, words));
}

TEST(ReadCmap4, StatedLength_MustHoldTheSegments) {
  const struct {
    uint32_t length;
    uint32_t size;
  } cases[] = {{13, 0}, {14, 0}, {31, 0}, {32, 38}, {33, 39}, {0xFFFF, 0xFFFF + 6}};
  for (const auto& c : cases) {
    const auto bytes = UnicodeCmap(Subtable4({kAscii, kTerminator}, {}, c.length));
    MemoryCmap source(bytes);
    EXPECT_EQ(Cmap4Size(source), c.size) << c.length;
    EXPECT_EQ(ReadWords(source).has_value(), c.size != 0) << c.length;
  }
}

TEST(Cmap4Table, GlyphOf_FollowsTheFirstSegmentThatEndsAtOrBehind) {
  const struct {
    const char* name;
    std::vector<SegmentFields> segments;
    std::vector<uint16_t> glyphs;
    uint16_t character;
    uint16_t glyph;
  } cases[] = {
      {"delta", {kAscii}, {}, 'A', 36},
      {"below the start", {kAscii}, {}, 0x1F, 0},
      {"behind the last end", {kAscii}, {}, 0x7F, 0},
      {"delta wraps", {{0x10, 0x20, 0xFFF8, 0}}, {}, 0x20, 0x18},
      {"entry", {{0x40, 0x42, 0, 2}}, {5, 6, 7}, 0x41, 6},
      {"entry with delta", {{0x40, 0x42, 10, 2}}, {5, 6, 7}, 0x42, 17},
      {"entry 0 takes no delta", {{0x40, 0x42, 10, 2}}, {5, 0, 7}, 0x41, 0},
      {"odd range offset", {{0x40, 0x42, 0, 3}}, {5, 6, 7}, 0x40, 5},
      {"entries end inside the segment", {{0x40, 0x4F, 0, 2}}, {5, 6}, 0x42, 0},
      {"range offset far behind", {{0x40, 0x4F, 1, 0xFFFF}}, {5, 6}, 0x40, 0},
      {"earlier segment hides", {{0x80, 0x90, 0, 0}, {0x20, 0x7E, 0, 0}}, {}, 0x41, 0},
      {"earlier segment decides", {{0x20, 0x7E, 1, 0}, {0x40, 0x50, 9, 0}}, {}, 0x41, 0x42},
      {"start behind end", {{0x50, 0x40, 0, 0}, {0x20, 0x7E, 0, 0}}, {}, 0x45, 0x45},
      {"last character", {{0xFFF0, 0xFFFF, 1, 0}}, {}, 0xFFFF, 0},
  };
  for (const auto& c : cases) {
    const auto words = WordsOf(c.segments, c.glyphs);
    EXPECT_EQ(Cmap4Table(words).GlyphOf(c.character), c.glyph) << c.name;
  }
  EXPECT_EQ(Cmap4Table().GlyphOf('A'), 0);
}

TEST(Cmap4Table, MappedCount_CountsSegmentBySegment) {
  const struct {
    const char* name;
    std::vector<SegmentFields> segments;
    std::vector<uint16_t> glyphs;
    uint16_t count;
  } cases[] = {
      {"none", {}, {}, 0},
      {"the terminator is a character", {kAscii, kTerminator}, {}, 96},
      {"entries of 0 do not count", {{0x40, 0x43, 1, 2}}, {5, 0, 0, 8}, 2},
      {"entries that the data lacks do not count", {{0x40, 0x4F, 1, 2}}, {5, 6}, 2},
      {"overlaps count twice", {{0, 9, 0, 0}, {5, 9, 0, 0}}, {}, 15},
      {"start behind end", {{9, 5, 0, 0}}, {}, 0},
      {"everything wraps to 0", {{0, 0xFFFF, 0, 0}}, {}, 0},
  };
  for (const auto& c : cases) {
    const auto words = WordsOf(c.segments, c.glyphs);
    EXPECT_EQ(Cmap4Table(words).MappedCount(), c.count) << c.name;
  }
  EXPECT_EQ(Cmap4Table().MappedCount(), 0);
}

}  // namespace
}  // namespace quillo::test
