#include "host/pictures/dib.h"

#include <algorithm>

#include "base/arithmetic.h"
#include "base/dib.h"

namespace quillo::host::emf {

namespace {

constexpr size_t kCoreHeader = 12;  // BITMAPCOREHEADER
constexpr size_t kInfoHeader = 40;  // BITMAPINFOHEADER; longer ones begin like it

// biCompression
enum Compression : uint32_t {
  kRgb = 0,
  kRle8 = 1,
  kRle4 = 2,
  kBitFields = 3,
  kJpeg = 4,
  kPng = 5,
  kAlphaBitFields = 6,
};

// A run-length picture may announce far more pixels than its bytes make; this many are accepted.
constexpr uint64_t kMaxRunLengthPixels = 1 << 26;

struct Header {
  size_t size = 0;
  int64_t width = 0;
  int64_t height = 0;  // negative: top-down
  uint16_t depth = 0;
  uint32_t compression = kRgb;
  uint32_t colours_used = 0;
  size_t colour_bytes = 4;  // of one entry of the colour table
};

std::optional<Header> ReadHeader(Bytes info) {
  Header header;
  header.size = LoadOrZero<uint32_t>(info);
  if (header.size > info.size()) return std::nullopt;
  if (header.size == kCoreHeader) {
    header.width = LoadOrZero<uint16_t>(info, 4);
    header.height = LoadOrZero<uint16_t>(info, 6);
    header.depth = LoadOrZero<uint16_t>(info, 10);
    header.colour_bytes = 3;
    return header;
  }
  if (header.size < kInfoHeader) return std::nullopt;
  header.width = LoadOrZero<int32_t>(info, 4);
  header.height = LoadOrZero<int32_t>(info, 8);
  header.depth = LoadOrZero<uint16_t>(info, 14);
  header.compression = LoadOrZero<uint32_t>(info, 16);
  header.colours_used = LoadOrZero<uint32_t>(info, 32);
  return header;
}

/// Whether depth and compression go together; sets the coding.
bool FindCoding(const Header& header, Dib& dib) {
  switch (header.compression) {
    case kRgb:
      return IsDibDepth(header.depth);
    case kBitFields:
    case kAlphaBitFields:
      return header.depth == 16 || header.depth == 32;
    case kRle8:
    case kRle4:
      dib.coding = Dib::Coding::kRunLength;
      return header.depth == (header.compression == kRle8 ? 8 : 4) && header.height > 0;
    case kJpeg:
      dib.coding = Dib::Coding::kJpeg;
      dib.depth = 0;
      return true;
    case kPng:
      dib.coding = Dib::Coding::kPng;
      dib.depth = 0;
      return true;
    default:
      return false;
  }
}

/// A mask's bits are one run; 0 is a colour that is absent.
bool MaskFits(uint32_t mask, uint16_t depth) {
  if (mask == 0) return true;
  const uint32_t run = mask >> __builtin_ctz(mask);
  return (run & (run + 1)) == 0 && (depth == 32 || mask <= 0xFFFF);
}

bool ReadMasks(Bytes info, const Header& header, Dib& dib) {
  if (!RangeFits(info.size(), kInfoHeader, 12)) return false;
  dib.red_mask = LoadOrZero<uint32_t>(info, kInfoHeader);
  dib.green_mask = LoadOrZero<uint32_t>(info, kInfoHeader + 4);
  dib.blue_mask = LoadOrZero<uint32_t>(info, kInfoHeader + 8);
  for (const uint32_t mask : {dib.red_mask, dib.green_mask, dib.blue_mask}) {
    if (!MaskFits(mask, header.depth)) return false;
  }
  // Masks that share bits are drawn: test files of long standing have them.
  return (dib.red_mask | dib.green_mask | dib.blue_mask) != 0;
}

/// The colour table, as far as `info` holds it.
void ReadPalette(Bytes info, const Header& header, DibColors colours,
                 const std::vector<uint32_t>& palette, Dib& dib) {
  const size_t max_count = size_t{1} << dib.depth;
  if (colours == DibColors::kNone) {
    dib.palette.assign(palette.begin(), palette.begin() + static_cast<ptrdiff_t>(
                                                              std::min(max_count, palette.size())));
    // Without a palette, two colours are black and white.
    if (dib.palette.empty() && dib.depth == 1) dib.palette = {0x000000, 0xFFFFFF};
    return;
  }
  const Bytes table = info.subspan(header.size);
  const size_t entry = colours == DibColors::kPaletteEntries ? 2 : header.colour_bytes;
  size_t count =
      header.colours_used != 0 ? std::min<size_t>(header.colours_used, max_count) : max_count;
  count = std::min(count, table.size() / entry);
  dib.palette.resize(count);
  for (size_t i = 0; i < count; ++i) {
    if (colours == DibColors::kPaletteEntries) {
      const auto index = LoadOrZero<uint16_t>(table, 2 * i);
      dib.palette[i] = index < palette.size() ? palette[index] : 0;
    } else {
      dib.palette[i] = LoadOrZero<uint32_t>(table.subspan(entry * i, entry)) & 0x00FFFFFF;
    }
  }
}

}  // namespace

std::optional<Dib> ParseDib(Bytes info, Bytes bits, DibColors colours, uint32_t rows,
                            const std::vector<uint32_t>& palette, std::string& what) {
  const auto refuse = [&what](std::string why) {
    what = std::move(why);
    return std::nullopt;
  };
  const auto header = ReadHeader(info);
  if (!header) return refuse("its bitmap header is invalid");
  Dib dib;
  dib.depth = header->depth;
  if (!FindCoding(*header, dib)) {
    if (dib.coding == Dib::Coding::kRunLength && header->height < 0) {
      return refuse("a run-length bitmap cannot be top-down");
    }
    return refuse("unsupported bitmap of " + std::to_string(header->depth) +
                  " bits per pixel, compression " + std::to_string(header->compression));
  }
  const int64_t height = header->height < 0 ? -header->height : header->height;
  if (header->width < 1 || header->width > Dib::kMaxSide || height < 1 || height > Dib::kMaxSide) {
    return refuse("invalid bitmap size of " + std::to_string(header->width) + " x " +
                  std::to_string(header->height) + " pixels");
  }
  dib.width = static_cast<int32_t>(header->width);
  dib.height = static_cast<int32_t>(rows != 0 ? std::min<int64_t>(rows, height) : height);
  dib.top_down = header->height < 0;
  dib.bits = bits;

  if (dib.coding == Dib::Coding::kRunLength &&
      static_cast<uint64_t>(dib.width) * static_cast<uint64_t>(dib.height) > kMaxRunLengthPixels) {
    return refuse("a run-length bitmap cannot have " + std::to_string(dib.width) + " x " +
                  std::to_string(dib.height) + " pixels");
  }
  if (dib.coding == Dib::Coding::kPlain) {
    const size_t row = (static_cast<size_t>(dib.width) * dib.depth + 7) / 8;
    const size_t needed = dib.Stride() * static_cast<size_t>(dib.height - 1) + row;
    if (bits.size() < needed) {
      return refuse("bitmap data of " + std::to_string(bits.size()) + " bytes where " +
                    std::to_string(needed) + " are needed");
    }
    if (header->compression != kRgb && !ReadMasks(info, *header, dib)) {
      return refuse("the bitmap's colour masks are invalid");
    }
  }
  if (dib.depth != 0 && dib.depth <= 8) ReadPalette(info, *header, colours, palette, dib);
  return dib;
}

}  // namespace quillo::host::emf
