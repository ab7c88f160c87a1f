#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "base/bytes.h"
#include "host/inputs/input.h"

namespace quillo::host {

/// Whether a file that begins with `head` is meant as a picture (PNG, JPEG, BMP, TIFF, GIF). Text
/// that begins with the letters of one is not.
bool LooksLikePicture(Bytes head);

/// A picture: a page for each frame, upright, one stretched blit each. Needs COM on this thread.
/// Throws UnreadableInput.
std::unique_ptr<PrintInput> OpenPicture(std::vector<std::byte> content);

}  // namespace quillo::host
