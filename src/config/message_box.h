#pragma once

#include "base/windows.h"

namespace quillo {

/// The one way to a message box: every message of the driver comes through here.
int ShowMessageBox(const wchar_t* text, const wchar_t* caption, UINT style);

}  // namespace quillo
