#pragma once

#include <cstdint>
#include <vector>

#include "base/bytes.h"
#include "host/emf_format/record_types.h"

namespace quillo::host::emf {

/// Bytes of an enhanced metafile, put together record by record. Every field is 32 bits wide.
class MetafileBuilder {
 public:
  /// Header of 88 bytes: a 100 x 50 pixel drawing on a device of 1000 x 500 pixels, 200 x 100 mm.
  MetafileBuilder() {
    Add(kEmrHEADER, {0,          0,          99,   49,    // bounds, pixels
                     0,          0,          2000, 1000,  // frame, 0.01 mm
                     0x464D4520, 0x00010000,              // signature, version
                     0,          0,                       // bytes, records: set by Finish()
                     16,                                  // handles
                     0,          0,          0,  // description length, offset; palette entries
                     1000,       500,            // device, pixels
                     200,        100});          // device, mm
  }

  /// A record with these payload words; returns where it begins.
  size_t Add(uint32_t type, const std::vector<uint32_t>& payload = {}) {
    const size_t start = bytes_.size();
    Append(type);
    Append(static_cast<uint32_t>(8 + payload.size() * 4));
    for (const uint32_t word : payload) Append(word);
    ++records_;
    return start;
  }

  /// Appends to the header, while there is no other record.
  void ExtendHeader(const std::vector<uint32_t>& payload) {
    for (const uint32_t word : payload) Append(word);
    Patch(4, static_cast<uint32_t>(bytes_.size()));
  }

  void Patch(size_t offset, uint32_t value) { Store(MutableBytes(bytes_), offset, value); }

  /// Adds the end record and sets the header's counts.
  std::vector<std::byte> Finish() {
    Add(kEmrEOF, {0, 16, 20});
    Patch(48, static_cast<uint32_t>(bytes_.size()));
    Patch(52, records_);
    return bytes_;
  }

 private:
  void Append(uint32_t word) {
    bytes_.resize(bytes_.size() + sizeof word);
    Store(MutableBytes(bytes_), bytes_.size() - sizeof word, word);
  }

  std::vector<std::byte> bytes_;
  uint32_t records_ = 0;
};

}  // namespace quillo::host::emf
