#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "base/bytes.h"
#include "host/inputs/input.h"

namespace quillo::host {

/// Whether a file that begins with `head` is meant as an enhanced metafile.
bool LooksLikeMetafile(Bytes head);

/// An enhanced metafile: one page. Throws UnreadableInput.
std::unique_ptr<PrintInput> OpenMetafile(std::vector<std::byte> content);

/// What a program has drawn on one page of the printer, as a metafile: its reference device is the
/// page, whose pixels are kept. Throws UnreadableInput.
std::unique_ptr<PrintInput> OpenPrintedPage(std::vector<std::byte> content);

}  // namespace quillo::host
