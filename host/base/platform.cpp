#include "host/base/platform.h"

#include "base/windows.h"

namespace quillo::host {

bool RunsUnderWine() {
  return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

}  // namespace quillo::host
