#pragma once

#include "base/ddi.h"

#include <cstdint>
#include <cstring>
#include <optional>

#include "host/engine/drawing.h"

namespace quillo::host {

/// Pixels of a picture by position, rows from the top.
class PixelReader {
 public:
  /// `picture` must outlive the reader and not be run-length coded.
  explicit PixelReader(const BitmapSource& picture);

  bool Holds(LONG x, LONG y) const {
    return x >= 0 && y >= 0 && x < picture_.width && y < picture_.height;
  }
  /// The stored pixel: a palette index, or the channels in the picture's own order.
  uint32_t Raw(LONG x, LONG y) const;
  /// 0x00RRGGBB; 32-bit pixels keep their highest byte.
  uint32_t Colour(LONG x, LONG y) const;

 private:
  const BitmapSource& picture_;
};

inline constexpr double kArgbBytes = 4;  // of each pixel of MakeArgb's pictures

/// A black, fully transparent picture of 32 bits a pixel, top-down.
BitmapSource MakeArgb(LONG width, LONG height);

inline void SetPixel(BitmapSource& argb, LONG x, LONG y, uint32_t colour) {
  std::memcpy(
      argb.bits.data() + static_cast<size_t>(y) * argb.Stride() + static_cast<size_t>(x) * 4,
      &colour, sizeof colour);
}

inline constexpr uint32_t kOpaque = 0xFF000000;

/// A rectangle of a picture as 32-bit pixels, mirrored where wanted. Pixels of the colour `key`
/// become transparent, all others opaque; without a key the highest byte stays as it is.
BitmapSource CopyArgb(const BitmapSource& picture, const RECTL& rect, bool mirror_x, bool mirror_y,
                      std::optional<uint32_t> key);

/// The part `area` of the picture that `rect` of the source makes when it is stretched to `target`
/// (which may be mirrored), by nearest neighbour; index 0 or black where the source has no pixel.
/// `area` must lie inside `target`. Pictures with palettes keep them, others get 24 bits.
BitmapSource StretchPart(const BitmapSource& source, const RECTL& rect, const RECTL& target,
                         const RECTL& area);

/// The picture in a rectangle with its axes exchanged; black where the source has no pixel.
BitmapSource Transpose(const BitmapSource& picture, const RECTL& rect);

/// What a run-length coded picture (Windows' RLE4 and RLE8) makes. Pixels that the code leaves out
/// are index 0; what it places outside is dropped.
struct ExpandedRuns {
  BitmapSource picture;
  bool overflows = false;  // the code places pixels outside
  bool is_cut = false;     // the code ends before the picture does
};
ExpandedRuns ExpandRuns(const BitmapSource& picture);

/// A picture whose pixels can be read: the picture itself, or what ExpandRuns makes of it.
class ReadablePicture {
 public:
  /// `picture` must outlive this object.
  explicit ReadablePicture(const BitmapSource& picture);
  ReadablePicture(const ReadablePicture&) = delete;
  ReadablePicture& operator=(const ReadablePicture&) = delete;

  const BitmapSource& operator*() const { return *used_; }

 private:
  BitmapSource expanded_;
  const BitmapSource* used_;
};

}  // namespace quillo::host
