#pragma once

#include "base/windows.h"

#include <functional>

namespace quillo::host {

/// Reads the font-options file that the driver writes at the end of a document, font by font; the
/// stream holds one LOGFONTW of 92 bytes for each and nothing else. Returns the
/// failure of structured storage; half a font at the end is ignored.
HRESULT ReadFontsFile(const wchar_t* path, const std::function<void(const LOGFONTW&)>& font);

}  // namespace quillo::host
