#include "driver/device_mode_merge.h"

#include <cstring>

#include "config/papers/paper_geometry.h"

namespace quillo {

namespace {

constexpr short kMinDpi = 50;
constexpr short kMaxDpi = 1600;
constexpr short kFallbackDpi = 96;

void MergePaper(DeviceMode& mode, const DEVMODEW& caller) {
  mode.pub.dmPaperSize = caller.dmPaperSize;
  if (caller.dmPaperSize >= DMPAPER_USER) {
    mode.pub.dmPaperLength = caller.dmPaperLength;
    mode.pub.dmPaperWidth = caller.dmPaperWidth;
    return;
  }
  const Extent sheet = ResolveSheet(mode).tenths.size;
  mode.pub.dmPaperWidth = static_cast<short>(sheet.width);
  mode.pub.dmPaperLength = static_cast<short>(sheet.height);
}

short UsableDpi(short dpi) { return dpi >= kMinDpi && dpi <= kMaxDpi ? dpi : kFallbackDpi; }

void MergeQuality(DEVMODEW& mode, const DEVMODEW& caller) {
  if (caller.dmPrintQuality >= 0 || caller.dmYResolution != 0) {
    mode.dmPrintQuality = UsableDpi(caller.dmPrintQuality);
    mode.dmYResolution = UsableDpi(caller.dmYResolution);
    return;
  }
  // DMRES_HIGH (-4) to DMRES_DRAFT (-1) are kept.
  mode.dmPrintQuality = caller.dmPrintQuality >= DMRES_HIGH ? caller.dmPrintQuality : DMRES_LOW;
}

}  // namespace

void MergeDeviceMode(DeviceMode& mode, const DEVMODEW* caller) {
  if (caller == nullptr) return;
  const DWORD fields = mode.pub.dmFields & caller->dmFields;

  if ((fields & DM_ORIENTATION) != 0 &&
      (caller->dmOrientation == DMORIENT_PORTRAIT || caller->dmOrientation == DMORIENT_LANDSCAPE)) {
    mode.pub.dmOrientation = caller->dmOrientation;
  }
  if ((fields & DM_PAPERSIZE) != 0) MergePaper(mode, *caller);
  // The device never makes copies itself.
  if ((fields & DM_COPIES) != 0 && caller->dmCopies == 1) mode.pub.dmCopies = 1;
  if ((fields & DM_DEFAULTSOURCE) != 0) mode.pub.dmDefaultSource = caller->dmDefaultSource;
  if ((fields & DM_PRINTQUALITY) != 0) MergeQuality(mode.pub, *caller);
  // dmColor and dmBitsPerPel stay: the device always works in 24-bit colour.

  if (!HasOwnShape(*caller)) return;
  std::memcpy(mode.pub.dmDeviceName, caller->dmDeviceName, sizeof mode.pub.dmDeviceName);
  mode.pub.dmDeviceName[CCHDEVICENAME - 1] = L'\0';
  const auto& callers = *reinterpret_cast<const DeviceMode*>(caller);
  mode.own = callers.own;
}

}  // namespace quillo
