#pragma once

#include <map>
#include <string>

#include "host/emf/reader.h"
#include "host/emf/transform.h"
#include "host/engine/canvas.h"

namespace quillo::host::emf {

struct PlayResult {
  /// Records that could not be carried to the page, by name.
  std::map<std::string, int> not_carried;
};

/// Draws the records that `reader` has before it. What is wrong with them stands in the reader's
/// faults afterwards; a damaged record is passed over, and the rest is drawn.
/// `to_page`: from pixels of the reference device to pixels of the canvas (see page_mapping.h).
PlayResult PlayMetafile(MetafileReader& reader, const Transform& to_page, Canvas& canvas);

}  // namespace quillo::host::emf
