#pragma once

#include "base/bytes.h"
#include "host/engine/drawing.h"
#include "host/pictures/picture_decoder.h"

namespace quillo::host {

/// The one picture of a BMP file.
struct BmpPicture {
  BitmapSource pixels;  // as the file's DIB has them; alpha is not kept
  Resolution dpi;       // 96 where the file says nothing usable
};

/// Whether a file begins like one.
bool IsBmp(Bytes file);

/// Reads a BMP file as the DIB that it is: the platform's decoder knows few of its bit fields.
/// Throws UnreadablePicture.
BmpPicture ReadBmp(Bytes file);

}  // namespace quillo::host
