#pragma once

#include "base/windows.h"

#include <optional>
#include <vector>

#include "base/bytes.h"
#include "host/pictures/picture_decoder.h"

namespace quillo::host {

/// The frames of a GIF as a viewer shows them one after the other: each drawn over what those
/// before it have left.
class GifAnimation {
 public:
  /// Nothing when the file is not a GIF.
  static std::optional<GifAnimation> Open(Bytes file);

  /// What a viewer shows with the next frame, on white, 24 bits a pixel, rows from the top.
  /// `decoder` is one of the same file. Throws UnreadablePicture, also after the last frame.
  BitmapSource Next(const PictureDecoder& decoder, uint64_t max_pixels);

 private:
  /// What becomes of a frame before the next one is drawn (GIF89a, graphic control).
  enum class Disposal { kNone, kStays, kClears, kRestores };
  struct Frame {
    RECT area;
    Disposal disposal;
  };

  GifAnimation() = default;

  SIZE screen_{};
  std::vector<Frame> frames_;
  size_t next_ = 0;
  BitmapSource canvas_;  // what the frames so far have left; empty before the first
};

}  // namespace quillo::host
