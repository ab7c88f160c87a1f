#pragma once

#include <optional>

#include "host/emf_format/payload_reader.h"
#include "host/emf_format/transform.h"
#include "host/engine/clip_shape.h"

namespace quillo::host::emf {

/// Reads a RGNDATA of `size` bytes and maps it by `to_page`. Nothing when it is damaged: then
/// `record` is not ok(), or `what` describes the damage. `what` is also set when the region had to
/// be simplified.
std::optional<ClipShape> ReadRegion(PayloadReader& record, size_t size, const Transform& to_page,
                                    std::string& what);

/// A logical rectangle on the page; a polygon when the map rotates.
ClipShape MapRectangle(const RectL& rect, const Transform& to_page);

}  // namespace quillo::host::emf
