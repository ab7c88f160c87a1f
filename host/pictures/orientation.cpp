#include "host/pictures/orientation.h"

#include <cstring>
#include <utility>

namespace quillo::host {

namespace {

/// What follows from `offset` on; empty when that is outside.
Bytes From(Bytes bytes, size_t offset) {
  return offset < bytes.size() ? bytes.subspan(offset) : Bytes();
}

bool StartsWith(Bytes bytes, const char* text, size_t length) {
  return bytes.size() >= length && std::memcmp(bytes.data(), text, length) == 0;
}

template <typename T>
T LoadBigEndian(Bytes bytes, size_t offset) {
  return SwapBytes(LoadOrZero<T>(bytes, offset));
}

/// The numbers of a TIFF structure, in its own byte order; outside it there are zeros.
class TiffReader {
 public:
  explicit TiffReader(Bytes tiff) : tiff_(tiff), big_endian_(StartsWith(tiff, "MM", 2)) {}

  uint16_t U16(size_t offset) const {
    return big_endian_ ? LoadBigEndian<uint16_t>(tiff_, offset)
                       : LoadOrZero<uint16_t>(tiff_, offset);
  }
  uint32_t U32(size_t offset) const {
    return big_endian_ ? LoadBigEndian<uint32_t>(tiff_, offset)
                       : LoadOrZero<uint32_t>(tiff_, offset);
  }

 private:
  Bytes tiff_;
  bool big_endian_;
};

constexpr uint16_t kOrientationTag = 274;
constexpr size_t kEntryBytes = 12;  // of a directory: tag, type, count, value

/// The orientation in the directory of a frame.
Orientation OrientationInTiff(Bytes tiff, uint32_t frame) {
  if (!StartsWith(tiff, "II*\0", 4) && !StartsWith(tiff, "MM\0*", 4)) return kUpright;
  const TiffReader reader(tiff);
  size_t directory = reader.U32(4);
  for (; frame != 0; --frame) {
    directory = reader.U32(directory + 2 + reader.U16(directory) * kEntryBytes);
  }
  const size_t entries = reader.U16(directory);
  for (size_t i = 0; i < entries; ++i) {
    const size_t entry = directory + 2 + i * kEntryBytes;
    if (reader.U16(entry) == kOrientationTag) return reader.U16(entry + 8);
  }
  return kUpright;
}

/// The TIFF structure in a JPEG file's EXIF segment.
Bytes ExifOfJpeg(Bytes jpeg) {
  for (size_t at = 2; LoadOrZero<uint8_t>(jpeg, at) == 0xFF;) {
    const auto marker = LoadOrZero<uint8_t>(jpeg, at + 1);
    const size_t size = LoadBigEndian<uint16_t>(jpeg, at + 2);
    if (marker == 0xDA || size < 2) break;  // the picture begins
    const Bytes segment = From(jpeg, at + 4);
    if (marker == 0xE1 && StartsWith(segment, "Exif\0\0", 6)) return segment.subspan(6);
    at += 2 + size;
  }
  return {};
}

/// The TIFF structure in a PNG file's eXIf chunk.
Bytes ExifOfPng(Bytes png) {
  for (size_t at = 8; at < png.size();) {
    const size_t size = LoadBigEndian<uint32_t>(png, at);
    if (StartsWith(From(png, at + 4), "eXIf", 4)) return From(png, at + 8);
    at += 12 + size;
  }
  return {};
}

}  // namespace

Orientation OrientationOf(Bytes file, uint32_t frame) {
  Bytes tiff = file;
  if (StartsWith(file, "\xFF\xD8", 2)) tiff = ExifOfJpeg(file);
  if (StartsWith(file, "\x89PNG", 4)) tiff = ExifOfPng(file);
  const Orientation orientation = OrientationInTiff(tiff, frame);
  return orientation >= 1 && orientation <= 8 ? orientation : kUpright;
}

BitmapSource TurnUpright(BitmapSource picture, Orientation orientation) {
  if (orientation == kUpright) return picture;
  // What leads from a pixel of the upright picture back to the stored one.
  const bool exchanged = SwapsSides(orientation);
  const bool from_right =
      orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8;
  const bool from_bottom =
      orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;
  BitmapSource upright;
  upright.width = exchanged ? picture.height : picture.width;
  upright.height = exchanged ? picture.width : picture.height;
  upright.bits_per_pixel = picture.bits_per_pixel;
  upright.top_down = true;
  upright.bits.resize(upright.Stride() * static_cast<size_t>(upright.height));
  for (LONG y = 0; y < upright.height; ++y) {
    std::byte* target = &upright.bits[upright.Stride() * static_cast<size_t>(y)];
    for (LONG x = 0; x < upright.width; ++x, target += 3) {
      LONG column = exchanged ? y : x;
      LONG row = exchanged ? x : y;
      if (from_right) column = picture.width - 1 - column;
      if (from_bottom) row = picture.height - 1 - row;
      const size_t source =
          picture.Stride() * static_cast<size_t>(row) + static_cast<size_t>(column) * 3;
      std::memcpy(target, &picture.bits[source], 3);
    }
  }
  return upright;
}

}  // namespace quillo::host
