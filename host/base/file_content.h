#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <vector>

namespace quillo::host {

/// All bytes of a file; nothing when it cannot be read.
std::optional<std::vector<std::byte>> ReadContent(const std::filesystem::path& path);

}  // namespace quillo::host
