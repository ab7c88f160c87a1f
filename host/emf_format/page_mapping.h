#pragma once

#include <cstdint>

#include "host/emf_format/geometry.h"
#include "host/emf_format/reader.h"
#include "host/emf_format/transform.h"

namespace quillo::host::emf {

/// The picture's frame in pixels of the reference device. Where the header's frame is empty, the
/// drawing's bounds stand in, and for an empty drawing the whole device.
struct FrameRect {
  double left = 0;
  double top = 0;
  double width = 0;   // above 0
  double height = 0;  // above 0
};
FrameRect FrameOf(const MetafileHeader& header);

/// From pixels of the reference device to pixels of a page: the frame as large as the printable
/// area
/// (`page`, device pixels) allows with its proportions, in the middle of the page.
Transform FitFrame(const MetafileHeader& header, SizeL page);

/// The same at the size that the frame has on its reference device; its corner is the page's.
Transform ActualSize(const MetafileHeader& header, uint32_t dpi);

}  // namespace quillo::host::emf
