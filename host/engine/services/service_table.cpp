#include "host/engine/services/service_table.h"

#include "base/ddi.h"

namespace quillo::host {

std::span<const EngineService> EngineServices() {
#define QUILLO_SERVICE(name) \
  EngineService { #name, reinterpret_cast < void*>(&::name) }
  static const EngineService services[] = {
      QUILLO_SERVICE(EngCreateBitmap),      QUILLO_SERVICE(EngAssociateSurface),
      QUILLO_SERVICE(EngDeleteSurface),     QUILLO_SERVICE(EngEraseSurface),
      QUILLO_SERVICE(EngCreatePalette),     QUILLO_SERVICE(EngDeletePalette),
      QUILLO_SERVICE(EngDeletePath),        QUILLO_SERVICE(PATHOBJ_vEnumStart),
      QUILLO_SERVICE(PATHOBJ_bEnum),        QUILLO_SERVICE(PATHOBJ_vGetBounds),
      QUILLO_SERVICE(CLIPOBJ_ppoGetPath),   QUILLO_SERVICE(XFORMOBJ_iGetXform),
      QUILLO_SERVICE(XFORMOBJ_bApplyXform), QUILLO_SERVICE(XLATEOBJ_piVector),
      QUILLO_SERVICE(XLATEOBJ_cGetPalette), QUILLO_SERVICE(BRUSHOBJ_pvAllocRbrush),
      QUILLO_SERVICE(BRUSHOBJ_pvGetRbrush), QUILLO_SERVICE(STROBJ_vEnumStart),
      QUILLO_SERVICE(STROBJ_bEnum),         QUILLO_SERVICE(FONTOBJ_pxoGetXform),
      QUILLO_SERVICE(FONTOBJ_pifi),
  };
#undef QUILLO_SERVICE
  return services;
}

}  // namespace quillo::host
