#include "fonts/font_map_manager.h"

#include <algorithm>
#include <iterator>

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
  const int32_t slot = ChooseSlot();
  use_counts_[slot] = 0;
  slots_[slot] = std::move(made);
  return slots_[slot].get();
}

/// An empty slot, else the least used one. Nothing ever counts a use, so a full cache always gives
/// up its first slot; this is meant.
int32_t CFontMapManager::ChooseSlot() const {
  const auto empty = std::find(std::begin(slots_), std::end(slots_), nullptr);
  if (empty != std::end(slots_)) return static_cast<int32_t>(empty - slots_);
  return static_cast<int32_t>(std::ranges::min_element(use_counts_) - use_counts_);
}

}  // namespace quillo
