#include "imaging/dib/dib_header.h"

#include <algorithm>
#include <optional>

#include "imaging/pixels/result.h"

namespace quillo::imaging {
namespace {

constexpr uint32_t kCoreHeaderSize = 12;
constexpr uint32_t kInfoHeaderSize = 40;
constexpr uint32_t kBiRgb = 0;

constexpr uint32_t FourCc(const char (&name)[5]) {
  uint32_t code = 0;
  for (int i = 3; i >= 0; --i) code = code << 8 | static_cast<uint8_t>(name[i]);
  return code;
}

/// A compression and what it requires of the rest of the header.
struct Compression {
  uint32_t code;
  std::array<uint32_t, 2> bits;  // accepted bit counts; 0, 0: any that bitmaps have
  uint32_t width_multiple;
  uint32_t height_multiple;
  DibLayout layout;
};

constexpr std::array kCompressions = {
    Compression{kBiRgb, {0, 0}, 1, 1, DibLayout::kRows},
    Compression{1, {8, 8}, 1, 1, DibLayout::kRle8},
    Compression{2, {4, 4}, 1, 1, DibLayout::kRle4},
    Compression{3, {16, 32}, 1, 1, DibLayout::kBitFields},
    Compression{FourCc("YVU9"), {9, 9}, 16, 16, DibLayout::kPlanar410},
    Compression{FourCc("IF09"), {9, 9}, 16, 16, DibLayout::kPlanar410},
    Compression{FourCc("I420"), {12, 12}, 4, 4, DibLayout::kPlanar420},
    Compression{FourCc("YV12"), {12, 12}, 4, 4, DibLayout::kPlanar420VFirst},
    Compression{FourCc("IYUV"), {12, 12}, 4, 4, DibLayout::kPlanar420},
    Compression{FourCc("UYVY"), {16, 16}, 2, 1, DibLayout::kPacked422},
    Compression{FourCc("cyuv"), {16, 16}, 2, 1, DibLayout::kPacked422},
    Compression{FourCc("YUY2"), {16, 16}, 2, 1, DibLayout::kYuy2},
    Compression{FourCc("YVYU"), {16, 16}, 2, 1, DibLayout::kPacked422YFirst},
    Compression{FourCc("Y211"), {8, 8}, 2, 1, DibLayout::kPacked211},
    Compression{FourCc("Y42T"), {16, 24}, 2, 1, DibLayout::kPacked422},
    Compression{FourCc("Y41P"), {12, 12}, 4, 4, DibLayout::kPacked411},
    Compression{FourCc("Y41T"), {12, 12}, 4, 4, DibLayout::kPacked411},
    Compression{FourCc("MJPG"), {0, 0}, 1, 1, DibLayout::kJpeg},
    Compression{FourCc("JPEG"), {0, 0}, 1, 1, DibLayout::kJpeg},
    Compression{FourCc("dmb1"), {0, 0}, 1, 1, DibLayout::kJpeg},
};

const Compression* FindCompression(uint32_t code, const DibDescription& dib) {
  const auto* found = std::ranges::find(kCompressions, code, &Compression::code);
  if (found == kCompressions.end()) return nullptr;
  const bool any = found->bits[0] == 0;
  if (any ? !IsSupportedDepth(dib.source_bits)
          : std::ranges::find(found->bits, dib.source_bits) == found->bits.end()) {
    return nullptr;
  }
  if (dib.width % found->width_multiple != 0 || dib.height % found->height_multiple != 0) {
    return nullptr;
  }
  return found;
}

/// Fills in size, bit count and what else the header holds; returns the compression.
std::optional<uint32_t> ReadFields(Bytes header, DibDescription* dib) {
  const auto size = LoadOrZero<uint32_t>(header);
  dib->colour_table = size;
  if (size == kCoreHeaderSize) {
    dib->width = LoadOrZero<uint16_t>(header, 4);
    dib->height = LoadOrZero<uint16_t>(header, 6);
    dib->source_bits = LoadOrZero<uint16_t>(header, 10);
    dib->colour_entry = 3;
    return kBiRgb;
  }
  if (size < kInfoHeaderSize || header.size() < kInfoHeaderSize) return std::nullopt;
  const auto height = LoadOrZero<int32_t>(header, 8);
  dib->width = LoadOrZero<uint32_t>(header, 4);
  dib->negative_height = height < 0;
  dib->height = height < 0 ? 0u - static_cast<uint32_t>(height) : static_cast<uint32_t>(height);
  dib->source_bits = LoadOrZero<uint16_t>(header, 14);
  dib->colour_entry = 4;
  dib->image_size = LoadOrZero<uint32_t>(header, 20);
  dib->x_pixels_per_metre = LoadOrZero<int32_t>(header, 24);
  dib->y_pixels_per_metre = LoadOrZero<int32_t>(header, 28);
  dib->colours = LoadOrZero<uint32_t>(header, 32);
  return LoadOrZero<uint32_t>(header, 16);
}

ColourMasks ReadMasks(Bytes header, uint32_t bits) {
  if (header.size() >= kInfoHeaderSize + sizeof(ColourMasks)) {
    return LoadOrZero<ColourMasks>(header, kInfoHeaderSize);
  }
  if (bits == 16) return {0x7C00, 0x3E0, 0x1F};
  return {0xFF0000, 0xFF00, 0xFF};
}

}  // namespace

int AnalyseDib(Bytes header, DibDescription* dib) {
  *dib = {};
  const std::optional<uint32_t> code = ReadFields(header, dib);
  if (!code) return kUnsupportedFormat;
  const Compression* compression = FindCompression(*code, *dib);
  if (compression == nullptr) return kUnsupportedFormat;
  if (dib->width > INT32_MAX) return kInvalidArgument;

  dib->layout = compression->layout;
  dib->bits_per_pixel = IsYuv(dib->layout) ? 24 : dib->source_bits;
  const uint32_t max = PaletteSize(dib->bits_per_pixel);
  if (dib->colours == 0 || dib->colours > max) dib->colours = max;
  if (dib->layout == DibLayout::kBitFields) dib->masks = ReadMasks(header, dib->source_bits);
  return kSuccess;
}

uint64_t SourceSize(const DibDescription& dib) {
  const uint64_t pixels = uint64_t{dib.width} * dib.height;
  switch (dib.layout) {
    case DibLayout::kRows:
    case DibLayout::kBitFields: {
      const auto geometry = MakeGeometry(dib.width, dib.height, dib.source_bits);
      return geometry ? geometry->data_size : UINT64_MAX;
    }
    case DibLayout::kPlanar420:
    case DibLayout::kPlanar420VFirst:
    case DibLayout::kPacked411:
      return pixels + pixels / 2;
    case DibLayout::kPlanar410:
      return pixels + pixels / 8;
    case DibLayout::kYuy2:
    case DibLayout::kPacked422:
    case DibLayout::kPacked422YFirst:
      return pixels * 2;
    case DibLayout::kPacked211:
      return pixels;
    case DibLayout::kRle8:
    case DibLayout::kRle4:
    case DibLayout::kJpeg:
      break;
  }
  return 0;
}

void ReadColourTable(Bytes header, const DibDescription& dib, std::span<PaletteEntry> palette) {
  const size_t table_size = header.size() - std::min<size_t>(dib.colour_table, header.size());
  if (table_size / dib.colour_entry < std::min<size_t>(palette.size(), 2)) {
    FillGreyRamp(palette);
    return;
  }
  size_t offset = dib.colour_table;
  for (PaletteEntry& entry : palette) {
    entry = {LoadOrZero<uint8_t>(header, offset), LoadOrZero<uint8_t>(header, offset + 1),
             LoadOrZero<uint8_t>(header, offset + 2), 0};
    offset += dib.colour_entry;
  }
}

}  // namespace quillo::imaging
