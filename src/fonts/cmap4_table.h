#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "base/bytes.h"

// Reads the format-4 subtable of a TrueType 'cmap' table (OpenType, "cmap").
namespace quillo::fonts {

/// Where the bytes of one font's 'cmap' table come from.
class CmapSource {
 public:
  static constexpr uint32_t kFailed = 0xFFFFFFFF;
  /// Copies up to out.size() bytes from `offset` of the table. Returns their number, or kFailed.
  virtual uint32_t Read(uint32_t offset, MutableBytes out) = 0;

 protected:
  ~CmapSource() = default;
};

/// The bytes that a copy of the font's subtable takes: its stated length and 6 bytes of slack.
/// 0 when the font has no encoding (3,0) or (3,1) or the subtable read is not a sound format 4.
uint32_t Cmap4Size(CmapSource& source);

/// Copies the subtable into `words`, zero-filled by the caller, 16-bit fields in host byte order.
/// False, with the content of `words` undefined, when it cannot be read or does not fit.
bool ReadCmap4(CmapSource& source, std::span<uint16_t> words);

/// A range of characters [start, end] and how it maps.
struct Cmap4Segment {
  uint16_t start;
  uint16_t end;  // inclusive
  uint16_t delta;
  std::span<const uint16_t> glyphs;  // entry per character; missing ones at the end count as 0
  bool uses_glyphs;                  // false: glyph = character + delta

  /// The glyph of a character of this segment, as far as no earlier segment takes the character.
  [[nodiscard]] uint16_t GlyphOf(uint32_t character) const {
    uint16_t entry = static_cast<uint16_t>(character);
    if (uses_glyphs) {
      const size_t index = character - start;
      entry = index < glyphs.size() ? glyphs[index] : 0;
      if (entry == 0) return 0;
    }
    return static_cast<uint16_t>(entry + delta);
  }
};

/// A view of what ReadCmap4 filled; the default maps nothing.
///
/// Segments may overlap, come in any order and point anywhere: every read stays inside the words.
class Cmap4Table {
 public:
  Cmap4Table() = default;
  /// `words` must come from a successful ReadCmap4 and outlive the view.
  explicit Cmap4Table(std::span<const uint16_t> words);

  [[nodiscard]] size_t SegmentCount() const { return segment_count_; }
  [[nodiscard]] Cmap4Segment Segment(size_t index) const;
  [[nodiscard]] uint16_t SegmentEnd(size_t index) const;

  /// The glyph by the first segment whose end is not below the character; 0 when unmapped.
  [[nodiscard]] uint16_t GlyphOf(uint16_t character) const;

  /// Characters that the segments map, modulo 65536; one that lies in two segments counts twice.
  [[nodiscard]] uint16_t MappedCount() const;

 private:
  std::span<const uint16_t> words_;
  size_t segment_count_ = 0;
};

/// A segment takes 8 bytes of a subtable of at most 65535, 16 of which are fixed.
inline constexpr size_t kMaxCmap4Segments = (0xFFFF - 16) / 8;

}  // namespace quillo::fonts
