#pragma once

#include "base/windows.h"

namespace quillo {

/// The driver's own module: written once at process attach, null before. Devices are refused while
/// it is null; resources are looked for beside its file.
inline HINSTANCE g_module_instance = nullptr;

}  // namespace quillo
