#include "host/emf/font_cache.h"

#include <algorithm>
#include <new>

namespace quillo::host::emf {

namespace {

// Each open font holds a font handle and a DC.
constexpr size_t kMostOpen = 200;

// Sizes beyond this, in logical units, would only strain the rasteriser.
constexpr LONG kLargest = 1 << 20;

}  // namespace

std::shared_ptr<const TextFont> FontCache::Find(const LOGFONTW& font) {
  LOGFONTW bounded = font;
  bounded.lfHeight = std::clamp(font.lfHeight, -kLargest, kLargest);
  bounded.lfWidth = std::clamp(font.lfWidth, -kLargest, kLargest);
  const size_t name = wcsnlen(font.lfFaceName, LF_FACESIZE - 1);
  std::fill(bounded.lfFaceName + name, bounded.lfFaceName + LF_FACESIZE, L'\0');

  const std::string key(reinterpret_cast<const char*>(&bounded), sizeof(bounded));
  if (const auto found = fonts_.find(key); found != fonts_.end()) return found->second;
  if (fonts_.size() >= kMostOpen) fonts_.clear();  // lines being drawn keep theirs
  try {
    return fonts_[key] = std::make_shared<const TextFont>(bounded);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace quillo::host::emf
