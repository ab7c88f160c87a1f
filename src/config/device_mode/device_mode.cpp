#include "config/device_mode/device_mode.h"

#include <algorithm>

#include "base/text.h"

namespace quillo {

namespace {

constexpr wchar_t kDefaultDeviceName[] = L"VORNIX Quillo 6";

}  // namespace

bool HasOwnShape(const DEVMODEW& mode) {
  return mode.dmSpecVersion == kSpecVersion && mode.dmDriverVersion == kDriverVersion &&
         mode.dmSize == sizeof(DEVMODEW) && mode.dmDriverExtra == kDriverExtra;
}

void BuildDefaultDeviceMode(DeviceMode& mode, const wchar_t* device_name) {
  mode = {};
  CopyPadded(mode.pub.dmDeviceName, device_name != nullptr ? device_name : kDefaultDeviceName,
             CCHDEVICENAME);
  mode.pub.dmSpecVersion = kSpecVersion;
  mode.pub.dmDriverVersion = kDriverVersion;
  mode.pub.dmSize = sizeof(DEVMODEW);
  mode.pub.dmDriverExtra = kDriverExtra;
  mode.pub.dmFields = kModeFields;
  mode.pub.dmOrientation = DMORIENT_PORTRAIT;
  mode.pub.dmPaperSize = DMPAPER_LETTER;
  mode.pub.dmCopies = 1;
  mode.pub.dmDefaultSource = DMBIN_AUTO;
  mode.pub.dmPrintQuality = DMRES_LOW;
  mode.pub.dmColor = DMCOLOR_COLOR;
  mode.pub.dmBitsPerPel = 24;
}

int32_t ResolutionOf(const DEVMODEW& mode) {
  switch (mode.dmPrintQuality) {
    case DMRES_HIGH:
      return 600;
    case DMRES_MEDIUM:
      return 300;
    case DMRES_LOW:
      return 150;
    default:
      if (mode.dmPrintQuality <= 0) return 96;
      return std::min(mode.dmPrintQuality, mode.dmYResolution);
  }
}

}  // namespace quillo
