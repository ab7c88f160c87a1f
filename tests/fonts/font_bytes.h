#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "base/bytes.h"
#include "fonts/cmap4_table.h"

namespace quillo::test {

/// A 'cmap' table in memory. Like GetFontData, a read that passes its end gives what there is.
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

/// The words of the subtable, or nothing when the reader refuses it.
inline std::optional<std::vector<uint16_t>> ReadWords(fonts::CmapSource& source) {
  const uint32_t size = Cmap4Size(source);
  if (size == 0) return std::nullopt;
  std::vector<uint16_t> words((size + 1) / 2);
  if (!ReadCmap4(source, words)) return std::nullopt;
  return words;
}

inline uint32_t BigEndian(Bytes bytes, size_t offset, int width) {
  uint32_t value = 0;
  for (int i = 0; i < width; ++i) {
    value = value << 8 | LoadOrZero<uint8_t>(bytes, offset + static_cast<size_t>(i));
  }
  return value;
}

/// The bytes of a table of the first font in a font file; empty when there is none. `tag` in the
/// file's byte order.
inline Bytes FindTable(Bytes file, uint32_t tag) {
  const bool is_collection = BigEndian(file, 0, 4) == 0x74746366;
  const size_t font = is_collection ? BigEndian(file, 12, 4) : 0;
  const uint32_t table_count = BigEndian(file, font + 4, 2);
  for (uint32_t i = 0; i < table_count; ++i) {
    const size_t record = font + 12 + size_t{16} * i;
    if (BigEndian(file, record, 4) != tag) continue;
    const size_t offset = std::min<size_t>(BigEndian(file, record + 8, 4), file.size());
    return file.subspan(offset,
                        std::min<size_t>(BigEndian(file, record + 12, 4), file.size() - offset));
  }
  return {};
}

inline constexpr uint32_t kCmapTag = 0x636D6170;

}  // namespace quillo::test
