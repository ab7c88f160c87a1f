#pragma once

#include <cstdint>

#include "ui/resource_ids.h"

namespace quillo {

/// A print quality that applications and the page of settings offer. The driver takes any between.
struct PrintQuality {
  int16_t dpi;
  uint16_t name;  // string number
};
inline constexpr PrintQuality kPrintQualities[] = {
    {96, IDS_QUALITY_DRAFT}, {150, IDS_QUALITY_LOW},   {300, IDS_QUALITY_MEDIUM},
    {600, IDS_QUALITY_HIGH}, {1200, IDS_QUALITY_BEST},
};

/// The sides that a sheet of one's own size may have, 0.1 mm.
inline constexpr int16_t kMinSide = 10;
inline constexpr int16_t kMaxSide = INT16_MAX;

}  // namespace quillo
