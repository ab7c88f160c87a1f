#pragma once

#include <cstdint>

#include "base/bytes.h"

namespace quillo::imaging {

// Rows of YUV pixels to 24-bit rows (blue first). Colours are BT.601, limited range, with the
// coefficients in 64ths:
//   L = 64 * 1.164384 (Y - 16) + 32 = (Y * 257 * 19003 >> 16) - 1160
//   R = (L                 + 102 (V - 128)) >> 6
//   G = (L -  25 (U - 128) -  52 (V - 128)) >> 6
//   B = (L + 129 (U - 128)                ) >> 6
// limited to 0..255. `rgb` has room for width * 3 bytes; more is not written.

/// One chroma sample for two pixels.
void PlanarRow420(const std::byte* y, const std::byte* u, const std::byte* v, uint32_t width,
                  std::byte* rgb);
/// One chroma sample for four pixels.
void PlanarRow410(const std::byte* y, const std::byte* u, const std::byte* v, uint32_t width,
                  std::byte* rgb);

// Packed rows; `width` is even, `source` holds a whole row.

/// Bytes Y0 U Y1 V for two pixels.
void Yuy2Row(Bytes source, uint32_t width, std::byte* rgb);
/// Bytes U Y0 V Y1.
void UyvyRow(Bytes source, uint32_t width, std::byte* rgb);
/// Bytes Y0 V Y1 U.
void YvyuRow(Bytes source, uint32_t width, std::byte* rgb);
/// Bytes U0 Y0 V0 Y1 U4 Y2 V4 Y3 Y4 Y5 Y6 Y7 for eight pixels, chroma for four. Where the row ends
/// in half a group, which lacks the last luma, the last pixel repeats the one before it.
void Packed411Row(Bytes source, uint32_t width, std::byte* rgb);
/// Bytes Y0 U0 Y2 V0 for four pixels. Where the row ends in half a group, V is that of the group
/// before (none: grey).
void Packed211Row(Bytes source, uint32_t width, std::byte* rgb);

}  // namespace quillo::imaging
