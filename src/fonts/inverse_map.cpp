#include "fonts/inverse_map.h"

#include <algorithm>
#include <array>
#include <bit>
#include <bitset>
#include <numeric>

namespace quillo::fonts {
namespace {

constexpr uint16_t kLastCharacter = 0xFFFF;

/// Segments before the terminator.
size_t ScannedSegments(const Cmap4Table& cmap) {
  for (size_t i = 0; i < cmap.SegmentCount(); ++i) {
    if (cmap.SegmentEnd(i) == kLastCharacter && cmap.Segment(i).start == kLastCharacter) return i;
  }
  return cmap.SegmentCount();
}

/// Whether the first `count` segments rise without overlaps, as the format demands. Then each
/// segment maps its own characters and each character comes once.
bool IsRising(const Cmap4Table& cmap, size_t count) {
  int32_t last = -1;
  for (size_t i = 0; i < count; ++i) {
    const Cmap4Segment segment = cmap.Segment(i);
    if (segment.start <= last || segment.end < segment.start) return false;
    last = segment.end;
  }
  return true;
}

uint32_t Width(const Cmap4Segment& segment) { return segment.end - segment.start + 1u; }

/// Entries of the segment's characters; shorter where the data ends.
std::span<const uint16_t> Entries(const Cmap4Segment& segment) {
  return segment.glyphs.first(std::min<size_t>(Width(segment), segment.glyphs.size()));
}

uint16_t LargestOfRising(const Cmap4Segment& segment) {
  if (segment.uses_glyphs) {
    uint16_t largest = 0;
    for (const uint16_t entry : Entries(segment)) {
      const auto glyph = static_cast<uint16_t>(entry + segment.delta);
      largest = std::max(largest, entry == 0 ? uint16_t{0} : glyph);
    }
    return largest;
  }
  const uint16_t first = segment.GlyphOf(segment.start);
  const uint16_t last = segment.GlyphOf(segment.end);
  return first <= last ? last : uint16_t{0xFFFF};  // the glyphs wrap around inside the segment
}

void FillFromRising(const Cmap4Segment& segment, std::span<uint16_t> table) {
  uint16_t character = segment.start;
  if (!segment.uses_glyphs) {
    // InverseMapSize has seen that the glyphs do not wrap around.
    const auto entries = table.subspan(segment.GlyphOf(character), Width(segment));
    std::iota(entries.begin(), entries.end(), character);
    return;
  }
  const auto entries = Entries(segment);
  for (const uint16_t entry : entries) {
    table[entry == 0 ? 0 : static_cast<uint16_t>(entry + segment.delta)] = character++;
  }
  if (entries.size() < Width(segment)) table[0] = segment.end;
}

/// The segment that decides each character's glyph: the first one whose end is not below it.
class DecidingSegments {
 public:
  explicit DecidingSegments(const Cmap4Table& cmap) : cmap_(cmap) {
    uint16_t reach = 0;
    for (size_t i = 0; i < cmap.SegmentCount(); ++i) {
      reach = std::max(reach, cmap.SegmentEnd(i));
      reaches_[i] = reach;
    }
  }

  [[nodiscard]] uint16_t GlyphOf(uint16_t character) const {
    const auto reaches = std::span(reaches_).first(cmap_.SegmentCount());
    const auto found = std::ranges::lower_bound(reaches, character);
    if (found == reaches.end()) return 0;
    const Cmap4Segment segment = cmap_.Segment(static_cast<size_t>(found - reaches.begin()));
    return character < segment.start ? 0 : segment.GlyphOf(character);
  }

 private:
  const Cmap4Table& cmap_;
  std::array<uint16_t, kMaxCmap4Segments> reaches_;  // furthest end up to each segment
};

/// The characters that have not been visited yet.
class UnvisitedCharacters {
 public:
  UnvisitedCharacters() { bits_.fill(~uint64_t{0}); }

  void Remove(int32_t character) { bits_[Word(character)] &= ~(uint64_t{1} << Bit(character)); }

  /// The highest one that does not exceed `character`; -1 when there is none.
  [[nodiscard]] int32_t HighestUpTo(int32_t character) const {
    if (character < 0) return -1;
    size_t word = Word(character);
    uint64_t bits = bits_[word] & (~uint64_t{0} >> (63 - Bit(character)));
    while (bits == 0) {
      if (word == 0) return -1;
      bits = bits_[--word];
    }
    return static_cast<int32_t>(64 * word) + 63 - std::countl_zero(bits);
  }

 private:
  static size_t Word(int32_t character) { return static_cast<size_t>(character) / 64; }
  static uint32_t Bit(int32_t character) { return static_cast<uint32_t>(character) % 64; }

  std::array<uint64_t, (kLastCharacter + 1) / 64> bits_;
};

/// Calls visit(character, glyph) once for each character of the first `count` segments. A character
/// that is visited later than another one was scanned for the last time before it.
template <typename Visit>
void VisitBackwards(const Cmap4Table& cmap, size_t count, Visit visit) {
  const DecidingSegments deciding(cmap);
  UnvisitedCharacters unvisited;
  for (size_t i = count; i-- > 0;) {
    const Cmap4Segment segment = cmap.Segment(i);
    for (int32_t c = unvisited.HighestUpTo(segment.end); c >= segment.start;
         c = unvisited.HighestUpTo(c - 1)) {
      visit(static_cast<uint16_t>(c), deciding.GlyphOf(static_cast<uint16_t>(c)));
      unvisited.Remove(c);
    }
  }
}

}  // namespace

uint16_t InverseMapSize(const Cmap4Table& cmap) {
  const size_t count = ScannedSegments(cmap);
  uint16_t largest = 0;
  if (IsRising(cmap, count)) {
    for (size_t i = 0; i < count; ++i)
      largest = std::max(largest, LargestOfRising(cmap.Segment(i)));
  } else {
    VisitBackwards(cmap, count,
                   [&](uint16_t, uint16_t glyph) { largest = std::max(largest, glyph); });
  }
  return largest == 0 ? uint16_t{0} : static_cast<uint16_t>(largest + 1);
}

void FillInverseMap(const Cmap4Table& cmap, std::span<uint16_t> table) {
  if (table.empty()) return;
  std::ranges::fill(table, kNoCharacter);
  const size_t count = ScannedSegments(cmap);
  if (IsRising(cmap, count)) {
    for (size_t i = 0; i < count; ++i) FillFromRising(cmap.Segment(i), table);
    return;
  }
  std::bitset<kLastCharacter + 1> filled;
  VisitBackwards(cmap, count, [&](uint16_t character, uint16_t glyph) {
    if (filled[glyph]) return;
    filled[glyph] = true;
    table[glyph] = character;
  });
}

}  // namespace quillo::fonts
