#pragma once

// The printer driver interface: DDI structures, engine services, and the device mode.
#include "base/windows.h"

#include <wingdi.h>
// winddi.h needs what comes before it.
#include <winddi.h>
