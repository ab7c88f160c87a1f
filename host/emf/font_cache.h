#pragma once

#include "base/ddi.h"

#include <map>
#include <memory>
#include <string>

#include "host/engine/text_font.h"

namespace quillo::host::emf {

/// The fonts of a metafile as the platform opened them. Metafiles create the same font over and
/// over; each is opened once.
class FontCache {
 public:
  /// Null when the platform has no font at all for it.
  std::shared_ptr<const TextFont> Find(const LOGFONTW& font);

 private:
  std::map<std::string, std::shared_ptr<const TextFont>> fonts_;  // by the bytes of the LOGFONTW
};

}  // namespace quillo::host::emf
