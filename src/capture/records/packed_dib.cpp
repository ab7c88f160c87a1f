#include "capture/records/packed_dib.h"

#include <cstring>

#include "base/arithmetic.h"
#include "base/dib.h"

namespace quillo::records {
namespace {

bool HasRunLengthBits(const DibHeader& header) {
  return IsRunLength(header.compression) &&
         header.bit_count == (header.compression == kDibRle8 ? 8 : 4);
}

}  // namespace

std::optional<uint64_t> DibBitsBytes(const DibHeader& header) {
  if (header.width < 1 || header.height == 0 || !IsDibDepth(header.bit_count)) {
    return std::nullopt;
  }
  const auto signed_height = int64_t{header.height};
  const auto rows = static_cast<uint64_t>(signed_height < 0 ? -signed_height : signed_height);
  return CheckedMultiply(DibRowBytes(static_cast<uint32_t>(header.width), header.bit_count), rows);
}

std::optional<PackedDib> LocatePackedDib(Bytes block, size_t offset) {
  if (!RangeFits(block.size(), offset, sizeof(DibHeader))) return std::nullopt;
  const Bytes dib = block.subspan(offset);
  PackedDib found{};
  DibHeader& header = found.info.header;
  header = LoadOrZero<DibHeader>(dib);
  if (header.size != sizeof(DibHeader)) return std::nullopt;

  const auto bytes = DibBitsBytes(header);
  const size_t start = PackedBitsOffset(header.bit_count);
  if (!bytes || start >= dib.size() ||
      !HasBoundedPixels(header.compression, header.width, header.height)) {
    return std::nullopt;
  }
  const Bytes rest = dib.subspan(start);
  if (HasRunLengthBits(header)) {
    found.bits = rest;
    header.size_image = static_cast<uint32_t>(rest.size());
  } else if (header.compression == kDibRgb && *bytes <= rest.size()) {
    found.bits = rest.first(static_cast<size_t>(*bytes));
  } else {
    return std::nullopt;
  }

  const uint32_t table_colours = header.bit_count <= 8 ? 1u << header.bit_count : 0;
  std::memcpy(found.info.colours, dib.data() + sizeof(DibHeader), table_colours * 4);
  if (header.colours_used > table_colours) header.colours_used = 0;
  return found;
}

}  // namespace quillo::records
