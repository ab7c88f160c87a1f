#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include "base/bytes.h"
#include "fonts/cmap4_table.h"
#include "fonts/inverse_map.h"

namespace quillo::test {

using Words = std::vector<uint16_t>;

/// Words as a font file holds them.
inline std::vector<std::byte> BigEndianBytes(Words words) {
  for (uint16_t& word : words) word = SwapBytes(word);
  const Bytes bytes = std::as_bytes(std::span(words));
  return {bytes.begin(), bytes.end()};
}

inline uint32_t BigEndian(Bytes bytes, size_t offset, int width) {
  const uint32_t value = SwapBytes(LoadOrZero<uint32_t>(bytes, offset));
  return width == 2 ? value >> 16 : value;
}

struct SegmentFields {
  uint16_t start, end, delta;
  uint16_t range_offset;  // bytes from its own place to the first entry; 0 = none
};

/// A format-4 subtable. Its header states `length`, or the true length for 0.
inline Words Subtable4(const std::vector<SegmentFields>& segments, const Words& glyphs = {},
                       uint16_t length = 0) {
  const auto count = static_cast<uint16_t>(segments.size());
  const auto true_length = static_cast<uint16_t>(16 + 8 * count + 2 * glyphs.size());
  // format, length, language, segCountX2, three search hints that nobody reads
  Words words = {4, length != 0 ? length : true_length, 0, static_cast<uint16_t>(2 * count), 0, 0,
                 0};
  for (const auto& s : segments) words.push_back(s.end);
  words.push_back(0);  // reserved
  for (const auto& s : segments) words.push_back(s.start);
  for (const auto& s : segments) words.push_back(s.delta);
  for (const auto& s : segments) words.push_back(s.range_offset);
  words.insert(words.end(), glyphs.begin(), glyphs.end());
  return words;
}

struct EncodingFields {
  uint16_t platform, encoding;
  uint16_t offset = 0;  // bytes from the end of the records
};

/// A 'cmap' table: encoding records, then the subtables.
inline std::vector<std::byte> Cmap(const Words& subtables,
                                   const std::vector<EncodingFields>& records = {{3, 1}}) {
  const size_t start = 4 + 8 * records.size();
  Words words = {0, static_cast<uint16_t>(records.size())};
  for (const auto& r : records) {
    words.insert(words.end(), {r.platform, r.encoding, 0, static_cast<uint16_t>(start + r.offset)});
  }
  words.insert(words.end(), subtables.begin(), subtables.end());
  return BigEndianBytes(words);
}

/// A table in memory. Like GetFontData, a read that passes its end gives what there is.
class MemoryCmap : public fonts::CmapSource {
 public:
  /// Reads that begin at or behind `fails_from` fail.
  explicit MemoryCmap(Bytes table, uint32_t fails_from = std::numeric_limits<uint32_t>::max())
      : table_(table), fails_from_(fails_from) {}
  uint32_t Read(uint32_t offset, MutableBytes out) override {
    if (offset >= fails_from_ || offset > table_.size()) return kFailed;
    const size_t count = std::min(out.size(), table_.size() - offset);
    std::copy_n(table_.begin() + offset, count, out.begin());
    return static_cast<uint32_t>(count);
  }

 private:
  Bytes table_;
  uint32_t fails_from_;
};

/// The words of a table's subtable; empty when the reader refuses it.
inline Words ReadWords(MemoryCmap source) {
  Words words((Cmap4Size(source) + 1) / 2);
  return !words.empty() && ReadCmap4(source, words) ? words : Words();
}

inline Words WordsOf(const std::vector<SegmentFields>& segments, const Words& glyphs = {}) {
  return ReadWords(MemoryCmap(Cmap(Subtable4(segments, glyphs))));
}

/// The map from glyphs back to characters.
inline Words InverseMap(const Words& words) {
  const fonts::Cmap4Table cmap(words);
  Words table(InverseMapSize(cmap));
  FillInverseMap(cmap, table);
  return table;
}

/// A table of the (first) font of a file; empty when there is none. `tag` as the file reads.
inline Bytes FindTable(Bytes file, uint32_t tag) {
  const bool is_collection = BigEndian(file, 0, 4) == 0x74746366;
  const size_t font = is_collection ? BigEndian(file, 12, 4) : 0;
  for (size_t i = 0; i < BigEndian(file, font + 4, 2); ++i) {
    const size_t record = font + 12 + 16 * i;
    if (BigEndian(file, record, 4) != tag) continue;
    const Bytes rest = file.subspan(std::min<size_t>(BigEndian(file, record + 8, 4), file.size()));
    return rest.first(std::min<size_t>(BigEndian(file, record + 12, 4), rest.size()));
  }
  return {};
}

inline constexpr uint32_t kCmapTag = 0x636D6170;

}  // namespace quillo::test
