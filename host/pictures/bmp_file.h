#pragma once

#include <string>

#include "base/bytes.h"
#include "host/engine/drawing.h"
#include "host/pictures/picture_decoder.h"

namespace quillo::host {

/// The one picture of a BMP file.
struct BmpPicture {
  BitmapSource pixels;  // as the file's DIB has them, runs expanded; alpha is not kept
  Resolution dpi;       // 96 where the file has nothing usable
  std::string damage;   // what is wrong with the pixels, a phrase; empty when nothing is
};

/// Whether a file begins like one.
bool IsBmp(Bytes file);

/// Whether a BMP file is run-length coded. The platform's decoder takes any code without a
/// failure, and leaves skipped pixels undefined.
bool IsRunLengthBmp(Bytes file);

/// Reads a BMP file, which must outlive the picture, as a DIB: the platform's decoder knows few of
/// its bit fields. Throws UnreadablePicture.
BmpPicture ReadBmp(Bytes file);

}  // namespace quillo::host
