#pragma once

#include "host/engine/path.h"
#include "host/engine/text_layout.h"

namespace quillo::host::emf {

/// The outlines of a laid-out line's glyphs, in device pixels.
Path TextOutline(const TextLayout& layout);

}  // namespace quillo::host::emf
