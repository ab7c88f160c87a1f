#include "host/engine/services/brushes.h"

#include "host/engine/services/guard.h"

namespace quillo::host {

BrushObject::BrushObject(ULONG device_colour) : BRUSHOBJ{} { iSolidColor = device_colour; }

BrushObject::BrushObject(const Pattern& pattern) : BRUSHOBJ{}, pattern_(pattern) {
  iSolidColor = kNotSolid;
}

void* BrushObject::Allocate(ULONG bytes) {
  realisation_.assign(bytes, std::byte{});
  pvRbrush = realisation_.data();
  return pvRbrush;
}

void* BrushObject::Realisation() {
  if (pvRbrush != nullptr || pattern_.realise == nullptr) return pvRbrush;
  ++realisations_;
  if (!pattern_.realise(this, pattern_.target, pattern_.pattern, pattern_.mask, pattern_.xlate,
                        pattern_.hatch)) {
    realisation_.clear();
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
    return pbo == nullptr ? nullptr : static_cast<BrushObject*>(pbo)->Realisation();
  });
}
