#include "config/merge/device_mode_merge.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "config/papers/paper_geometry.h"

namespace quillo {

namespace {

constexpr short kMinDpi = 50;
constexpr short kMaxDpi = 1600;
constexpr short kFallbackDpi = 96;

/// The caller's public members up to its own size; what lies beyond is zero and not given.
DEVMODEW GivenBy(const DEVMODEW& caller) {
  static constexpr struct {
    DWORD field;
    size_t end;
  } kFields[] = {{DM_ORIENTATION, offsetof(DEVMODEW, dmPaperSize)},
                 {DM_PAPERSIZE, offsetof(DEVMODEW, dmPaperLength)},
                 {DM_COPIES, offsetof(DEVMODEW, dmDefaultSource)},
                 {DM_DEFAULTSOURCE, offsetof(DEVMODEW, dmPrintQuality)},
                 {DM_PRINTQUALITY, offsetof(DEVMODEW, dmColor)}};
  DEVMODEW given = {};
  std::memcpy(&given, &caller, std::min<size_t>(caller.dmSize, sizeof given));
  for (const auto& [field, end] : kFields) {
    if (caller.dmSize < end) given.dmFields &= ~field;
  }
  return given;
}

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
  const DEVMODEW given = GivenBy(*caller);
  const DWORD fields = mode.pub.dmFields & given.dmFields;

  if ((fields & DM_ORIENTATION) != 0 &&
      (given.dmOrientation == DMORIENT_PORTRAIT || given.dmOrientation == DMORIENT_LANDSCAPE)) {
    mode.pub.dmOrientation = given.dmOrientation;
  }
  if ((fields & DM_PAPERSIZE) != 0) MergePaper(mode, given);
  // The device never makes copies itself.
  if ((fields & DM_COPIES) != 0 && given.dmCopies == 1) mode.pub.dmCopies = 1;
  if ((fields & DM_DEFAULTSOURCE) != 0) mode.pub.dmDefaultSource = given.dmDefaultSource;
  if ((fields & DM_PRINTQUALITY) != 0) MergeQuality(mode.pub, given);
  // dmColor and dmBitsPerPel stay: the device always works in 24-bit colour.

  if (!HasOwnShape(given)) return;
  std::memcpy(mode.pub.dmDeviceName, given.dmDeviceName, sizeof mode.pub.dmDeviceName);
  mode.pub.dmDeviceName[CCHDEVICENAME - 1] = L'\0';
  const auto& callers = *reinterpret_cast<const DeviceMode*>(caller);
  mode.own = callers.own;
}

}  // namespace quillo
