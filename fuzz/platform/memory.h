#pragma once

#include "base/windows.h"

#include <cstddef>
#include <memory>
#include <vector>

using SharedBytes = std::shared_ptr<std::vector<std::byte>>;

/// The bytes of an open section.
SharedBytes BytesOfSection(HANDLE section);

/// Whether all handles of sections are closed, and all views of them gone.
bool NoSectionsLeft();
