#pragma once

#include "base/windows.h"

namespace quillo {

/// The driver's own module, set at process attach. While it is null, devices are refused; the
/// resource module lies in the same folder.
inline HINSTANCE g_module_instance = nullptr;

}  // namespace quillo
