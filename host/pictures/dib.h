#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/bytes.h"
#include "base/dib.h"

namespace quillo::host::emf {

/// A device-independent bitmap as a record holds it, checked: all members are valid.
struct Dib {
  enum class Coding { kPlain, kRunLength, kJpeg, kPng };

  Coding coding = Coding::kPlain;
  int32_t width = 0;      // pixels, 1 to kMaxSide
  int32_t height = 0;     // pixels, 1 to kMaxSide; of the rows that `bits` holds
  bool top_down = false;  // order of the rows
  uint16_t depth = 0;     // 1, 4, 8, 16, 24, 32; JPEG and PNG: 0
  uint32_t red_mask = 0;  // 16 and 32 bits; all zero: the usual 5-5-5 and 8-8-8
  uint32_t green_mask = 0;
  uint32_t blue_mask = 0;
  std::vector<uint32_t> palette;  // 0x00RRGGBB, up to 8 bits; at most 2^depth entries
  Bytes bits;                     // plain: whole rows of 32-bit words, the last one may lack its
                                  // padding; else the coded picture

  static constexpr int32_t kMaxSide = 1 << 16;

  /// Bytes of one plain row.
  size_t Stride() const { return DibStride(static_cast<uint64_t>(width), depth); }
};

/// How a DIB's colour table is to be read, as records number it.
enum class DibColors : uint32_t {
  kRgb = 0,             // colours
  kPaletteEntries = 1,  // 16-bit indexes into the DC's palette
  kNone = 2,            // no table: pixels are indexes into the DC's palette
};

/// Finds the parts of a DIB. `info` is its header and colour table, `bits` its pixels; `rows` is
/// the number of rows that `bits` holds when they are fewer than the header states
/// (SetDIBitsToDevice in pieces), else 0. `palette` is the DC's, 0x00RRGGBB. Nothing when the DIB
/// cannot be drawn; `what` is then the reason.
std::optional<Dib> ParseDib(Bytes info, Bytes bits, DibColors colours, uint32_t rows,
                            const std::vector<uint32_t>& palette, std::string& what);

}  // namespace quillo::host::emf
