#pragma once

#include "base/windows.h"

#include <stdexcept>
#include <wincodec.h>

#include "base/bytes.h"
#include "base/com_owners.h"
#include "host/engine/drawing.h"

namespace quillo::host {

/// The bytes are not a picture that can be decoded; the message completes a sentence that begins
/// with the picture's name.
class UnreadablePicture : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Dots per inch.
struct Resolution {
  double x;
  double y;
};

/// `dpi`, or 96 where that cannot be a picture's.
Resolution UsableResolution(Resolution dpi);

/// A white picture of 24 bits a pixel, rows from the top. Throws UnreadablePicture when it would be
/// empty or have more than `max_pixels`.
BitmapSource BlankPicture(UINT width, UINT height, uint64_t max_pixels);

/// A picture file in memory (PNG, JPEG, BMP, TIFF, GIF), decoded by the platform. Needs COM on this
/// thread.
class PictureDecoder {
 public:
  /// `file` must outlive the decoder. Throws UnreadablePicture.
  explicit PictureDecoder(Bytes file);

  UINT FrameCount() const { return frame_count_; }
  /// A frame's pixels on white, 24 bits each, rows from the top. Throws UnreadablePicture, also for
  /// frames of more than `max_pixels`.
  BitmapSource Frame(UINT index, uint64_t max_pixels) const;
  /// Blends a frame over a picture of BlankPicture's kind; what lies outside is dropped. Throws
  /// UnreadablePicture.
  void BlendFrame(UINT index, POINT at, BitmapSource& picture) const;
  /// A frame's resolution where the file states a usable one, else 96 dpi.
  Resolution FrameResolution(UINT index) const;

 private:
  ComPtr<IWICBitmapFrameDecode> OpenFrame(UINT index) const;

  ComPtr<IWICImagingFactory> factory_;
  ComPtr<IWICBitmapDecoder> decoder_;
  UINT frame_count_ = 0;
};

}  // namespace quillo::host
