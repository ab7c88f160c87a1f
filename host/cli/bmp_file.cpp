#include "host/cli/bmp_file.h"

#include <cstring>
#include <string>

#include "host/emf/dib.h"
#include "host/emf/dib_source.h"

namespace quillo::host {

namespace {

// Offsets of BITMAPFILEHEADER and, behind it, of BITMAPINFOHEADER.
constexpr size_t kBitsOffset = 10;
constexpr size_t kFileHeader = 14;
constexpr size_t kPixelsPerMetreX = 24;
constexpr size_t kPixelsPerMetreY = 28;

}  // namespace

bool IsBmp(Bytes file) {
  return file.size() >= kFileHeader && std::memcmp(file.data(), "BM", 2) == 0;
}

BmpPicture ReadBmp(Bytes file) {
  const size_t bits_offset = LoadOrZero<uint32_t>(file, kBitsOffset);
  if (!IsBmp(file) || bits_offset < kFileHeader || bits_offset > file.size()) {
    throw UnreadablePicture("is cut off in its header");
  }
  const Bytes info = file.first(bits_offset).subspan(kFileHeader);
  std::string what;
  const auto dib =
      emf::ParseDib(info, file.subspan(bits_offset), emf::DibColors::kRgb, 0, {}, what);
  if (!dib) throw UnreadablePicture("cannot be read: " + what);
  const auto per_inch = [info](size_t offset) {
    // The oldest headers end before it.
    return LoadOrZero<uint32_t>(info) > offset ? LoadOrZero<int32_t>(info, offset) * 0.0254 : 0;
  };
  return {emf::SourceOf(*dib),
          UsableResolution({per_inch(kPixelsPerMetreX), per_inch(kPixelsPerMetreY)})};
}

}  // namespace quillo::host
