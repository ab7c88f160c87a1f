#pragma once

#include "base/ddi.h"

#include "host/engine/drawing.h"
#include "host/pictures/dib.h"

namespace quillo::host::emf {

/// The picture that a DIB holds, whose bits must outlive it. JPEG and PNG are decoded. Throws
/// UnreadablePicture.
BitmapSource SourceOf(const Dib& dib);

}  // namespace quillo::host::emf
