#pragma once

#include <cstdint>
#include <vector>

#include "base/bytes.h"

namespace quillo::test {

/// Big-endian bytes, appended.
class BigEndianBytes {
 public:
  BigEndianBytes& U16(uint32_t value) {
    bytes_.push_back(static_cast<std::byte>(value >> 8));
    bytes_.push_back(static_cast<std::byte>(value));
    return *this;
  }
  BigEndianBytes& U32(uint32_t value) { return U16(value >> 16).U16(value & 0xFFFF); }
  BigEndianBytes& Append(const std::vector<std::byte>& bytes) {
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    return *this;
  }
  [[nodiscard]] const std::vector<std::byte>& Get() const { return bytes_; }

 private:
  std::vector<std::byte> bytes_;
};

struct SegmentFields {
  uint16_t start;
  uint16_t end;
  uint16_t delta;
  uint16_t range_offset;  // bytes from its own place to the first entry; 0 = none
};

/// A format-4 subtable. `length` is stated in its header; 0 states the true one.
inline std::vector<std::byte> Subtable4(const std::vector<SegmentFields>& segments,
                                        const std::vector<uint16_t>& glyphs = {},
                                        uint32_t length = 0) {
  const size_t true_length = 16 + 8 * segments.size() + 2 * glyphs.size();
  BigEndianBytes out;
  out.U16(4)                                                           // format
      .U16(length != 0 ? length : static_cast<uint32_t>(true_length))  // length
      .U16(0)                                                          // language
      .U16(static_cast<uint32_t>(2 * segments.size()))                 // segCountX2
      .U16(0)
      .U16(0)
      .U16(0);  // search hints, not used
  for (const SegmentFields& s : segments) out.U16(s.end);
  out.U16(0);  // reserved
  for (const SegmentFields& s : segments) out.U16(s.start);
  for (const SegmentFields& s : segments) out.U16(s.delta);
  for (const SegmentFields& s : segments) out.U16(s.range_offset);
  for (const uint16_t glyph : glyphs) out.U16(glyph);
  return out.Get();
}

struct EncodingFields {
  uint16_t platform;
  uint16_t encoding;
  int32_t subtable;  // which of the subtables
};

/// A 'cmap' table of the records and, behind them, the subtables one after the other.
inline std::vector<std::byte> Cmap(const std::vector<EncodingFields>& records,
                                   const std::vector<std::vector<std::byte>>& subtables) {
  BigEndianBytes out;
  out.U16(0).U16(static_cast<uint32_t>(records.size()));  // version, numTables
  for (const EncodingFields& record : records) {
    size_t offset = 4 + 8 * records.size();
    for (int32_t i = 0; i < record.subtable; ++i)
      offset += subtables[static_cast<size_t>(i)].size();
    out.U16(record.platform).U16(record.encoding).U32(static_cast<uint32_t>(offset));
  }
  for (const auto& subtable : subtables) out.Append(subtable);
  return out.Get();
}

/// The common case: one record (3,1).
inline std::vector<std::byte> UnicodeCmap(const std::vector<std::byte>& subtable) {
  return Cmap({{3, 1, 0}}, {subtable});
}

}  // namespace quillo::test
