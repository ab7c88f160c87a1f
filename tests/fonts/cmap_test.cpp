#include <gtest/gtest.h>
#include <sstream>
#include <string>

#include "fonts/cmap4_table.h"
#include "fonts/font_tables.h"
#include "fonts/inverse_map.h"
#include "support/case_table.h"
#include "support/corpus.h"
#include "support/digest.h"
#include "support/line.h"

namespace quillo::test {
namespace {

using fonts::Cmap4Table;

/// The words of a subtable by texts: "START END DELTA RANGE_OFFSET, ..." and "GLYPH ...".
Words WordsOf(const std::string& segments, const std::string& glyphs) {
  std::vector<SegmentFields> fields;
  std::istringstream parts(segments);
  for (std::string part; std::getline(parts, part, ',');) {
    SegmentFields& s = fields.emplace_back();
    Scan(part, s.start, s.end, s.delta, s.range_offset);
  }
  Words entries;
  std::istringstream numbers(glyphs);
  for (uint16_t number; numbers >> number;) entries.push_back(number);
  return WordsOf(fields, entries);
}

const SegmentFields kAscii = {0x20, 0x7E, static_cast<uint16_t>(-29), 0};
const SegmentFields kEnd = {0xFFFF, 0xFFFF, 1, 0};

TEST(ReadCmap4, EncodingRecords_LastOneGivesTheSubtable) {
  Words subtables = Subtable4({kAscii, kEnd});
  const auto format12 = static_cast<uint16_t>(2 * subtables.size());
  subtables.insert(subtables.end(), {12, 0, 0, 28, 0, 0, 0, 1});
  CheckCases("fonts/encodings.txt", [&](const auto& fields) {
    std::vector<EncodingFields> records;
    std::istringstream words(fields[0]);
    std::string subtable;
    for (EncodingFields r{}; words >> r.platform >> r.encoding >> subtable;) {
      r.offset = subtable == "format12" ? format12 : 0;
      records.push_back(r);
    }
    return std::string(ReadWords(MemoryCmap(Cmap(subtables, records))).empty() ? "none" : "read");
  });
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
  CheckCases("fonts/cmap4.txt", [](const auto& fields) {
    const Words words = WordsOf(fields[1], fields[2]);
    const Cmap4Table table(words);
    return Line(table.GlyphOf(static_cast<uint16_t>(std::stoi(fields[3], nullptr, 0))), ' ',
                table.MappedCount());
  });
  EXPECT_EQ(Cmap4Table().GlyphOf('A'), 0);
}

TEST(InverseMap, LastScannedCharacter_Stays) {
  CheckCases("fonts/inverse_maps.txt", [](const auto& fields) {
    std::string characters;
    const Words map = InverseMap(WordsOf(fields[1], fields[2]));
    if (map.size() > 20) return Line("digest 0x", std::hex, Digest(std::as_bytes(std::span(map))));
    for (const uint16_t character : map) {
      characters += (characters.empty() ? "" : " ") + std::to_string(character);
    }
    return characters;
  });
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
      const Cmap4Table cmap(words);
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
