#include "ui/document_modes.h"

#include <cstring>

#include "config/merge/device_mode_merge.h"
#include "config/papers/paper_geometry.h"
#include "config/settings/stored_device_mode.h"
#include "ui/papers.h"

namespace quillo {

namespace {

bool LeavesRoom(int32_t printable, int32_t sheet) { return printable > 0 && printable <= sheet; }

/// Whether the driver could print on the sheet: it takes all margins for inches.
bool IsPrintable(DeviceMode mode) {
  UseInchMargins(mode);
  const SheetArea area = ResolveSheet(mode).pixels;
  return LeavesRoom(area.printable.width, area.size.width) &&
         LeavesRoom(area.printable.height, area.size.height);
}

}  // namespace

DeviceMode DocumentDefaults(HANDLE printer, const wchar_t* name) {
  OpenPrintersForUse(name);
  DeviceMode mode;
  BuildDefaultDeviceMode(mode, name);
  DeviceMode stored = mode;
  LoadStoredDeviceMode(printer, stored);
  TakeOver(mode, &stored.pub);  // without a stored one, too: it fills in the sheet's size
  return mode;
}

void TakeOver(DeviceMode& mode, const DEVMODEW* caller) {
  DeviceMode merged = mode;
  MergeDeviceMode(merged, caller);
  // The mode is this printer's whoever filled it: custom papers are looked up by the name in it,
  // and a stranger's could be that of a printer on another machine.
  std::memcpy(merged.pub.dmDeviceName, mode.pub.dmDeviceName, sizeof mode.pub.dmDeviceName);
  if (!IsPrintable(merged)) merged.own.margins_given = 0;
  if (!IsPrintable(merged)) {
    merged.pub.dmPaperSize = mode.pub.dmPaperSize;
    merged.pub.dmPaperWidth = mode.pub.dmPaperWidth;
    merged.pub.dmPaperLength = mode.pub.dmPaperLength;
  }
  mode = merged;
}

void CopyOut(const DeviceMode& mode, DEVMODEW* out) { std::memcpy(out, &mode, sizeof mode); }

}  // namespace quillo
