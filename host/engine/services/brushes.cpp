#include "host/engine/services/brushes.h"

#include "host/engine/services/guard.h"

namespace quillo::host {

BrushObject::BrushObject(ULONG device_color) : BRUSHOBJ{} { iSolidColor = device_color; }

BrushObject::BrushObject(const Pattern& pattern) : BRUSHOBJ{}, pattern_(pattern) {
  iSolidColor = kNotSolid;
}

void* BrushObject::Allocate(ULONG bytes) {
  realization_.assign(bytes, std::byte{});
  pvRbrush = realization_.data();
  return pvRbrush;
}

void* BrushObject::Realization() {
  if (pvRbrush != nullptr || pattern_.realize == nullptr) return pvRbrush;
  ++realizations_;
  if (!pattern_.realize(this, pattern_.target, pattern_.pattern, pattern_.mask, pattern_.xlate,
                        pattern_.hatch)) {
    realization_.clear();
    pvRbrush = nullptr;
  }
  return pvRbrush;
}

}  // namespace quillo::host

using namespace quillo::host;

extern "C" PVOID APIENTRY BRUSHOBJ_pvAllocRbrush(BRUSHOBJ* pbo, ULONG cj) {
  return Service<PVOID>("BRUSHOBJ_pvAllocRbrush", nullptr, [&]() -> PVOID {
    return pbo == nullptr ? nullptr : static_cast<BrushObject*>(pbo)->Allocate(cj);
  });
}

extern "C" PVOID APIENTRY BRUSHOBJ_pvGetRbrush(BRUSHOBJ* pbo) {
  return Service<PVOID>("BRUSHOBJ_pvGetRbrush", nullptr, [&]() -> PVOID {
    return pbo == nullptr ? nullptr : static_cast<BrushObject*>(pbo)->Realization();
  });
}
