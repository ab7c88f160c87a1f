#include "fonts/font_map_manager.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace quillo {

std::unique_ptr<CFontMapManager> CFontMapManager::Create() {
  return std::unique_ptr<CFontMapManager>(new CFontMapManager);
}

int32_t CFontMapManager::Translate(HDC dc, uint32_t count, const uint16_t* glyphs,
                                   uint16_t* characters) {
  const CFontMapper* mapper = FindOrMake(dc);
  return mapper == nullptr ? 0 : static_cast<int32_t>(mapper->Translate(count, glyphs, characters));
}

CFontMapper* CFontMapManager::FindOrMake(HDC dc) {
  FontIdentity font;
  if (!font.Read(dc)) return nullptr;
  for (const auto& mapper : slots_) {
    if (mapper && mapper->Matches(font)) return mapper.get();
  }
  std::unique_ptr<CFontMapper> made(new CFontMapper);
  if (!made || !made->Build(dc)) return nullptr;
  // Compatibility: once all slots are taken, it is always the first one that is replaced, however
  // often its font is used. Kept for pages, whose text depends on which fonts were read anew.
  const auto empty = std::find(std::begin(slots_), std::end(slots_), nullptr);
  auto& slot = empty != std::end(slots_) ? *empty : slots_[0];
  slot = std::move(made);
  return slot.get();
}

}  // namespace quillo
