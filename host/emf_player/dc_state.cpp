#include "host/emf_player/dc_state.h"

#include <variant>

#include "host/emf_player/object_table.h"

namespace quillo::host::emf {

DcState::DcState(const PageTransform& first_page)
    : page(first_page),
      pen(std::get<Shared<PenObject>>(StockObject(BLACK_PEN))),
      brush(std::get<Shared<BrushObject>>(StockObject(WHITE_BRUSH))),
      font(std::get<Shared<FontObject>>(StockObject(DEVICE_DEFAULT_FONT))),
      palette(std::get<Shared<PaletteObject>>(StockObject(DEFAULT_PALETTE))) {}

}  // namespace quillo::host::emf
