#pragma once

#include "base/windows.h"

#include <cstddef>
#include <cstdint>
#include <memory>

#include "fonts/font_mapper.h"
#include "fonts/heap_object.h"

namespace quillo {

/// The mappers of the fonts that a job has used, at most 50 of them.
class CFontMapManager : public HeapObject {
 public:
  CFontMapManager() = default;
  virtual ~CFontMapManager() = default;
  CFontMapManager(const CFontMapManager&) = delete;
  CFontMapManager& operator=(const CFontMapManager&) = delete;

  /// Null when memory is short.
  static std::unique_ptr<CFontMapManager> Create();

  /// Turns glyphs of the font selected in `dc` into characters. Returns the count written, or 0
  /// with `characters` untouched when the font cannot be read.
  int32_t Translate(HDC dc, uint32_t count, const uint16_t* glyphs, uint16_t* characters);

 private:
  static constexpr size_t kCapacity = 50;

  CFontMapper* FindOrMake(HDC dc);

  std::unique_ptr<CFontMapper> slots_[kCapacity];
};

/// As CFontMapManager::Translate; a null manager translates nothing and returns 0.
inline int32_t TranslateGlyphs(CFontMapManager* manager, HDC dc, uint32_t count,
                               const uint16_t* glyphs, uint16_t* characters) {
  return manager == nullptr ? 0 : manager->Translate(dc, count, glyphs, characters);
}

}  // namespace quillo
