#pragma once

// The printer driver interface: DDI structures, engine services, and the device mode.
#include "base/windows.h"

#include <wingdi.h>
// winddi.h wants the three above it.
#include <winddi.h>
