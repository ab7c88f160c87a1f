#pragma once

#include "imaging/bitmap/bitmap_handle.h"

namespace quillo::imaging {

/// Makes `upright` the same picture, bottom row first, with storage of its own. Width and height
/// change places where the axes were swapped. `source` is locked. Fails as CreateLike does, or with
/// kFileError; `upright` must be freed even then.
int MakeUpright(const BitmapHandle& source, BitmapHandle* upright);

/// MakeUpright in place: rearranges the pixels so that the picture stays while the view perspective
/// becomes bottom row first. On failure the record is unchanged.
int TurnUpright(BitmapHandle& record);

}  // namespace quillo::imaging
