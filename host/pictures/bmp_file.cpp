#include "host/pictures/bmp_file.h"

#include <cstring>
#include <string>
#include <utility>

#include "host/engine/raster.h"
#include "host/pictures/dib.h"
#include "host/pictures/dib_source.h"

namespace quillo::host {

namespace {

// Offsets in BITMAPFILEHEADER and in the BITMAPINFOHEADER that follows.
constexpr size_t kBitsOffset = 10;
constexpr size_t kFileHeader = 14;
constexpr size_t kCompression = 16;
constexpr size_t kPixelsPerMetreX = 24;
constexpr size_t kPixelsPerMetreY = 28;

constexpr uint32_t kInfoHeader = 40;  // size of BITMAPINFOHEADER

std::string DamageOf(const ExpandedRuns& runs) {
  if (runs.is_cut) return "its run-length code is damaged: it ends before the picture does";
  if (runs.overflows) return "its run-length code is damaged: it runs past the picture's edges";
  return {};
}

}  // namespace

bool IsBmp(Bytes file) {
  return file.size() >= kFileHeader && std::memcmp(file.data(), "BM", 2) == 0;
}

bool IsRunLengthBmp(Bytes file) {
  const auto compression = LoadOrZero<uint32_t>(file, kFileHeader + kCompression);
  return IsBmp(file) && LoadOrZero<uint32_t>(file, kFileHeader) >= kInfoHeader &&
         (compression == BI_RLE8 || compression == BI_RLE4);
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
    // BITMAPCOREHEADER ends before it.
    return LoadOrZero<uint32_t>(info) > offset ? LoadOrZero<int32_t>(info, offset) * 0.0254 : 0;
  };
  BmpPicture read;
  read.pixels = emf::SourceOf(*dib);
  read.dpi = UsableResolution({per_inch(kPixelsPerMetreX), per_inch(kPixelsPerMetreY)});
  if (read.pixels.run_length) {
    ExpandedRuns runs = ExpandRuns(read.pixels);
    read.damage = DamageOf(runs);
    read.pixels = std::move(runs.picture);
  }
  return read;
}

}  // namespace quillo::host
