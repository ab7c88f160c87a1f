#include "host/emf_player/dc_state.h"

#include <utility>
#include <variant>

#include "host/emf_player/object_table.h"

namespace quillo::host::emf {

namespace {

// A file of nothing but EMR_SAVEDC must not fill the memory with states.
constexpr size_t kMaxSaves = 10000;

}  // namespace

DcState::DcState(const PageTransform& first_page)
    : page(first_page),
      pen(std::get<Shared<PenObject>>(StockObject(BLACK_PEN))),
      brush(std::get<Shared<BrushObject>>(StockObject(WHITE_BRUSH))),
      font(std::get<Shared<FontObject>>(StockObject(DEVICE_DEFAULT_FONT))),
      palette(std::get<Shared<PaletteObject>>(StockObject(DEFAULT_PALETTE))) {}

bool SavedStates::Save(const DcState& state) {
  if (saved_.size() >= kMaxSaves) return false;
  saved_.push_back(state);
  return true;
}

bool SavedStates::Restore(int32_t level, DcState& state) {
  const auto depth = static_cast<int64_t>(saved_.size());
  const int64_t index = level < 0 ? depth + level : int64_t{level} - 1;
  if (index < 0 || index >= depth) return false;
  state = std::move(saved_[static_cast<size_t>(index)]);
  saved_.erase(saved_.begin() + static_cast<ptrdiff_t>(index), saved_.end());
  return true;
}

}  // namespace quillo::host::emf
