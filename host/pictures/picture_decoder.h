#pragma once

#include "base/windows.h"

#include <stdexcept>
#include <wincodec.h>

#include "base/bytes.h"
#include "base/com_owners.h"
#include "host/engine/drawing.h"

namespace quillo::host {

/// The bytes are no picture that can be decoded; the message completes a sentence that begins with
/// the picture's name.
class UnreadablePicture : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Dots per inch.
struct Resolution {
  double x;
  double y;
};

/// `dpi`, or 96 where that is no resolution of a picture.
Resolution UsableResolution(Resolution dpi);

/// A picture file in memory (PNG, JPEG, BMP, TIFF, GIF), decoded by the platform. Needs COM on this
/// thread.
class PictureDecoder {
 public:
  /// `file` must outlive the decoder. Throws UnreadablePicture.
  explicit PictureDecoder(Bytes file);

  UINT FrameCount() const { return frame_count_; }
  /// A frame's pixels on white, 24 bits each, rows from the top. Throws UnreadablePicture, also for
  /// frames of more than `most_pixels`.
  BitmapSource Frame(UINT index, uint64_t most_pixels) const;
  /// What the file says of a frame's size, where that is usable.
  Resolution FrameResolution(UINT index) const;

 private:
  ComPtr<IWICBitmapFrameDecode> OpenFrame(UINT index) const;

  ComPtr<IWICImagingFactory> factory_;
  ComPtr<IWICBitmapDecoder> decoder_;
  UINT frame_count_ = 0;
};

}  // namespace quillo::host
