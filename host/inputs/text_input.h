#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "host/inputs/input.h"

namespace quillo::host {

/// A plain text: as many pages as it fills, in a font of fixed pitch. Throws UnreadableInput.
std::unique_ptr<PrintInput> OpenText(std::vector<std::byte> content);

}  // namespace quillo::host
