#pragma once

#include <cstdint>

#include "host/emf_format/geometry.h"
#include "host/emf_format/reader.h"
#include "host/emf_format/transform.h"

namespace quillo::host::emf {

/// The picture's frame in pixels of the reference device. If the header's frame is empty, it is the
/// drawing's bounds; for an empty drawing, the whole device.
struct FrameRect {
  double left = 0;
  double top = 0;
  double width = 0;   // above 0
  double height = 0;  // above 0
};
FrameRect FrameOf(const MetafileHeader& header);

/// From pixels of the reference device to pixels of a page: scales the frame to the printable area
/// (`page`, device pixels), keeping its proportions, and centres it.
Transform FitFrame(const MetafileHeader& header, SizeL page);

/// The same at the frame's size on its reference device, in the page's top left corner.
Transform ActualSize(const MetafileHeader& header, uint32_t dpi);

}  // namespace quillo::host::emf
