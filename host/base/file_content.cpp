#include "host/base/file_content.h"

#include <fstream>

namespace quillo::host {

std::optional<std::vector<std::byte>> ReadContent(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  const std::streamoff size = file.tellg();
  if (size < 0 || !file.seekg(0)) return std::nullopt;
  std::vector<std::byte> content(static_cast<size_t>(size));
  if (!file.read(reinterpret_cast<char*>(content.data()), size)) return std::nullopt;
  return content;
}

}  // namespace quillo::host
