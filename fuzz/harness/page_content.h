#pragma once

#include "base/windows.h"

#include <algorithm>
#include <functional>
#include <string>

#include "host/emf_format/reader.h"
#include "support/corpus.h"

namespace quillo::harness {

/// A number for the content of a page's file; 0 for one that is not there. What Wine leaves
/// undefined, the ends of font records, does not count.
inline size_t PageContent(const std::filesystem::path& path) {
  const auto file = test::ReadFile(path);
  if (file.empty()) return 0;
  std::string content;
  host::emf::MetafileReader reader(file);
  while (const auto record = reader.Next()) {
    const size_t kept = record->type == EMR_EXTCREATEFONTINDIRECTW ? 12 + sizeof(LOGFONTW) : ~0u;
    content.append(reinterpret_cast<const char*>(record->bytes.data()),
                   std::min(record->bytes.size(), kept));
  }
  return std::hash<std::string>()(content);
}

}  // namespace quillo::harness
