#pragma once

#include "base/ddi.h"

#include "driver/device/device.h"

namespace quillo {

/// Records the font by its logical description, sized in font units: the font's transform carries
/// the size on the page. False, and no record, when the engine has no metrics.
bool WriteFont(DEVICE_PDEV& device, FONTOBJ* font);

}  // namespace quillo
