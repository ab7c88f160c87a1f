#include "host/app/app_modes.h"

#include <algorithm>
#include <cstring>

#include "base/system_owners.h"
#include "config/merge/device_mode_merge.h"
#include "config/settings/stored_device_mode.h"
#include "host/printer/printer_setup.h"

namespace quillo::host {

namespace {

/// The device mode that programs get which ask the printer for one.
DeviceMode PrinterDefault() {
  DeviceMode mode;
  BuildDefaultDeviceMode(mode, kPrinterName);
  std::wstring name = kPrinterName;
  PrinterHandle printer;
  if (OpenPrinterW(name.data(), printer.Receive(), nullptr)) {
    DeviceMode stored = mode;
    LoadStoredDeviceMode(printer.Get(), stored);
    MergeDeviceMode(mode, &stored.pub);
  }
  return mode;
}

bool HasSameSheet(const DEVMODEW& a, const DEVMODEW& b) {
  return a.dmPaperSize == b.dmPaperSize && a.dmOrientation == b.dmOrientation &&
         (a.dmPaperSize < DMPAPER_USER ||
          (a.dmPaperWidth == b.dmPaperWidth && a.dmPaperLength == b.dmPaperLength));
}

/// Millimetres of a size that may be in micrometres, then below 0.
int32_t Millimetres(ULONG size) {
  const auto number = static_cast<int32_t>(size);
  return number < 0 ? -number / 1000 : number;
}

}  // namespace

std::optional<AppMode> ReadAppMode(std::span<const std::byte> bytes, const AppSheet& wanted) {
  const DeviceMode initial = PrinterDefault();
  AppMode result{.mode = initial};
  DeviceMode& mode = result.mode;
  if (!bytes.empty()) {
    // Long enough for every reader of either part.
    DeviceMode given{};
    if (bytes.size() < offsetof(DEVMODEW, dmOrientation)) return std::nullopt;
    std::memcpy(&given, bytes.data(), std::min(bytes.size(), sizeof given));
    if (size_t{given.pub.dmSize} + given.pub.dmDriverExtra != bytes.size()) return std::nullopt;
    MergeDeviceMode(mode, &given.pub);
    std::memcpy(mode.pub.dmDeviceName, initial.pub.dmDeviceName, sizeof mode.pub.dmDeviceName);
    const auto gives = [&given](DWORD field, size_t end) {
      return (given.pub.dmFields & field) != 0 && given.pub.dmSize >= end;
    };
    if (gives(DM_COPIES, offsetof(DEVMODEW, dmDefaultSource))) {
      result.copies = std::max<int>(given.pub.dmCopies, 1);
    }
    result.collated =
        gives(DM_COLLATE, offsetof(DEVMODEW, dmFormName)) && given.pub.dmCollate == DMCOLLATE_TRUE;
  }
  if (wanted.sheet && HasSameSheet(mode.pub, initial.pub)) {
    const DeviceMode replacement = MakeDeviceMode(kPrinterName, *wanted.sheet, wanted.dpi);
    MergeDeviceMode(mode, &replacement.pub);
  }
  mode.pub.dmFields |= DM_YRESOLUTION;
  mode.pub.dmPrintQuality = mode.pub.dmYResolution = static_cast<short>(wanted.dpi);
  return result;
}

app::Capabilities CapabilitiesOf(const GDIINFO& device) {
  const auto number = [](ULONG value) { return static_cast<int32_t>(value); };
  return {.width_millimetres = Millimetres(device.ulHorzSize),
          .height_millimetres = Millimetres(device.ulVertSize),
          .width = number(device.ulHorzRes),
          .height = number(device.ulVertRes),
          .sheet_width = device.szlPhysSize.cx,
          .sheet_height = device.szlPhysSize.cy,
          .left = device.ptlPhysOffset.x,
          .top = device.ptlPhysOffset.y,
          .dpi_x = number(device.ulLogPixelsX),
          .dpi_y = number(device.ulLogPixelsY),
          .bits_per_pixel = number(device.cBitsPixel),
          .planes = number(device.cPlanes),
          .colours = number(device.ulNumColors),
          .aspect_x = number(device.ulAspectX),
          .aspect_y = number(device.ulAspectY),
          .aspect_xy = number(device.ulAspectXY),
          .text_capabilities = number(device.flTextCaps)};
}

}  // namespace quillo::host
