#pragma once

#include "base/ddi.h"

#include <cstddef>
#include <optional>
#include <span>

#include "config/device_mode/device_mode.h"
#include "host/app_protocol/app_protocol.h"
#include "host/printer/sheet.h"

namespace quillo::host {

/// What a program's device mode asks for.
struct AppMode {
  DeviceMode mode;
  int copies = 1;
  bool collated = false;
};

/// How the command wants a program's pages.
struct AppSheet {
  std::optional<SheetChoice> sheet;  // in the place of the printer's default one
  int dpi;                           // of all pages: the printer has one quality for a job
};

/// The device mode for a page: the program's, as far as this printer honours it. `bytes` is a
/// DEVMODEW with its private part, or empty for the printer's default. Nothing for bytes that are
/// neither.
std::optional<AppMode> ReadAppMode(std::span<const std::byte> bytes, const AppSheet& wanted);

/// What GetDeviceCaps answers for a device.
app::Capabilities CapabilitiesOf(const GDIINFO& device);

}  // namespace quillo::host
