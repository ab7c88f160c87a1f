#include "capture/records/packed_bitmap.h"

#include <iterator>

#include "base/arithmetic.h"

namespace quillo::records {
namespace {

/// Indexed by surface format.
constexpr SurfaceFormat kSurfaceFormats[] = {{0, kDibRgb},    // BMF_DEVICE
                                             {1, kDibRgb},    // BMF_1BPP
                                             {4, kDibRgb},    // BMF_4BPP
                                             {8, kDibRgb},    // BMF_8BPP
                                             {16, kDibRgb},   // BMF_16BPP
                                             {24, kDibRgb},   // BMF_24BPP
                                             {32, kDibRgb},   // BMF_32BPP
                                             {4, kDibRle4},   // BMF_4RLE
                                             {8, kDibRle8}};  // BMF_8RLE

constexpr int32_t kPelsWithoutDevice = 6000;

/// Pels per metre of a resolution in dots per inch.
///
/// Compatibility: the factor is 40, not the exact 39.37, as in existing streams.
int32_t PelsPerMetre(uint32_t dpi) {
  return dpi == 0 ? kPelsWithoutDevice : static_cast<int32_t>(dpi * 40);
}

}  // namespace

std::optional<SurfaceFormat> FindSurfaceFormat(uint32_t surface_format) {
  if (surface_format >= std::size(kSurfaceFormats)) return std::nullopt;
  const SurfaceFormat format = kSurfaceFormats[surface_format];
  if (format.bit_count == 0) return std::nullopt;
  return format;
}

std::optional<uint32_t> PackedSize(SurfaceFormat format, uint64_t bits_size) {
  if (bits_size > UINT32_MAX) return std::nullopt;
  return CheckedAdd(static_cast<uint32_t>(PackedBitsOffset(format.bit_count)),
                    static_cast<uint32_t>(bits_size));
}

DibInfo MakePackedHead(SurfaceFormat format, int32_t width, int32_t height, DotsPerInch dpi) {
  DibInfo head = {};
  head.header.size = sizeof head.header;
  head.header.width = width;
  head.header.height = height;
  head.header.planes = 1;
  head.header.bit_count = format.bit_count;
  head.header.compression = format.compression;
  head.header.x_pels_per_metre = PelsPerMetre(dpi.x);
  head.header.y_pels_per_metre = PelsPerMetre(dpi.y);
  return head;
}

void SetMaskColours(DibInfo& head) {
  head.colours[0] = 0x00FFFF00;
  head.colours[1] = 0x00FFFFFF;
}

Bytes PackedHeadBytes(const DibInfo& head) {
  return std::as_bytes(std::span(&head, 1)).first(PackedBitsOffset(head.header.bit_count));
}

}  // namespace quillo::records
