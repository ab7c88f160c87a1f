#include "fonts/cmap4_table.h"

#include <algorithm>
#include <array>

namespace quillo::fonts {
namespace {

constexpr uint32_t kSlackBytes = 6;  // zero, at the end of every copy
constexpr size_t kHeaderWords = 7;
constexpr uint32_t kHeaderBytes = 2 * kHeaderWords;
constexpr uint16_t kWindowsPlatform = 3;
constexpr uint16_t kSymbolEncoding = 0;
constexpr uint16_t kUnicodeEncoding = 1;

struct EncodingRecord {
  uint16_t platform;
  uint16_t encoding;
  uint32_t offset;  // of the subtable, from the start of 'cmap'
};
static_assert(sizeof(EncodingRecord) == 8);

struct Subtable {
  uint32_t offset;
  std::array<uint16_t, kHeaderWords> header;  // host byte order

  [[nodiscard]] uint16_t Format() const { return header[0]; }
  [[nodiscard]] uint16_t Length() const { return header[1]; }
  [[nodiscard]] size_t SegmentCount() const { return header[3] / 2; }
  [[nodiscard]] uint32_t CopyBytes() const { return Length() + kSlackBytes; }
  /// Whether the four segment arrays and the reserved word end inside the stated length.
  [[nodiscard]] bool IsSound() const {
    return Format() == 4 && kHeaderBytes + 2 + 8 * SegmentCount() <= Length();
  }
};

template <typename T>
bool ReadWhole(CmapSource& source, uint32_t offset, T& value) {
  return source.Read(offset, std::as_writable_bytes(std::span(&value, 1))) == sizeof(T);
}

bool ReadBigEndian(CmapSource& source, uint32_t offset, uint16_t& value) {
  if (!ReadWhole(source, offset, value)) return false;
  value = SwapBytes(value);
  return true;
}

/// Compatibility: any record for Windows characters or symbols makes the font readable, but the
/// subtable is always that of the last record. Where the last record is for something else, say
/// (3,10), its subtable has another format and the font counts as having none. Kept for pages,
/// which show such text as glyphs.
std::optional<uint32_t> ChooseSubtable(CmapSource& source) {
  uint16_t record_count = 0;
  if (!ReadBigEndian(source, 2, record_count)) return std::nullopt;
  bool qualifies = false;
  uint32_t last_offset = 0;
  for (uint32_t i = 0; i < record_count; ++i) {
    EncodingRecord record{};
    if (!ReadWhole(source, 4 + 8 * i, record)) return std::nullopt;
    const uint16_t encoding = SwapBytes(record.encoding);
    qualifies |= SwapBytes(record.platform) == kWindowsPlatform &&
                 (encoding == kUnicodeEncoding || encoding == kSymbolEncoding);
    last_offset = SwapBytes(record.offset);
  }
  if (!qualifies) return std::nullopt;
  return last_offset;
}

bool ReadHeader(CmapSource& source, Subtable& subtable) {
  for (uint32_t i = 0; i < kHeaderWords; ++i) {
    if (!ReadBigEndian(source, subtable.offset + 2 * i, subtable.header[i])) return false;
  }
  return subtable.IsSound();
}

std::optional<Subtable> FindSubtable(CmapSource& source) {
  const std::optional<uint32_t> offset = ChooseSubtable(source);
  if (!offset) return std::nullopt;
  Subtable subtable{*offset, {}};
  if (!ReadHeader(source, subtable)) return std::nullopt;
  return subtable;
}

}  // namespace

uint32_t Cmap4Size(CmapSource& source) {
  const std::optional<Subtable> subtable = FindSubtable(source);
  return subtable ? subtable->CopyBytes() : 0;
}

bool ReadCmap4(CmapSource& source, std::span<uint16_t> words) {
  const std::optional<Subtable> subtable = FindSubtable(source);
  if (!subtable || words.size_bytes() < subtable->CopyBytes()) return false;

  std::ranges::copy(subtable->header, words.begin());
  const size_t rest_bytes = subtable->Length() - kHeaderBytes;
  const std::span<uint16_t> rest = words.subspan(kHeaderWords);
  // A font that ends early has fewer bytes than it states; the missing ones stay zero.
  const uint32_t copied =
      source.Read(subtable->offset + kHeaderBytes, std::as_writable_bytes(rest).first(rest_bytes));
  if (copied == CmapSource::kFailed) return false;
  for (uint16_t& word : rest.first(rest_bytes / 2)) word = SwapBytes(word);
  return true;
}

// Words of a subtable with n segments: 7 of header, endCode[n], a reserved word, startCode[n],
// idDelta[n], idRangeOffset[n], glyphIdArray. An idRangeOffset counts bytes from its own place.

Cmap4Table::Cmap4Table(std::span<const uint16_t> words)
    : words_(words), segment_count_(words[3] / 2u) {}

uint16_t Cmap4Table::SegmentEnd(size_t index) const { return words_[kHeaderWords + index]; }

Cmap4Segment Cmap4Table::Segment(size_t index) const {
  const size_t start = kHeaderWords + segment_count_ + 1 + index;
  const size_t delta = start + segment_count_;
  const size_t range_offset = delta + segment_count_;
  Cmap4Segment segment{words_[start], SegmentEnd(index), words_[delta], {}, false};
  if (words_[range_offset] != 0) {
    segment.uses_glyphs = true;
    const size_t first = range_offset + words_[range_offset] / 2u;
    if (first < words_.size()) segment.glyphs = words_.subspan(first);
  }
  return segment;
}

uint16_t Cmap4Table::GlyphOf(uint16_t character) const {
  const std::span<const uint16_t> ends = words_.subspan(words_.empty() ? 0 : kHeaderWords);
  for (size_t i = 0; i < segment_count_; ++i) {
    if (ends[i] < character) continue;
    const Cmap4Segment segment = Segment(i);
    return character < segment.start ? 0 : segment.GlyphOf(character);
  }
  return 0;
}

uint16_t Cmap4Table::MappedCount() const {
  size_t count = 0;
  for (size_t i = 0; i < segment_count_; ++i) {
    const Cmap4Segment segment = Segment(i);
    if (segment.end < segment.start) continue;
    const size_t width = size_t{segment.end} - segment.start + 1;
    if (segment.uses_glyphs) {
      const auto entries = segment.glyphs.first(std::min(width, segment.glyphs.size()));
      count += entries.size() - static_cast<size_t>(std::ranges::count(entries, 0));
    } else {
      count += width;
    }
  }
  return static_cast<uint16_t>(count);
}

}  // namespace quillo::fonts
