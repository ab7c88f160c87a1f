#pragma once

#include <cstddef>
#include <cstdint>

#include "base/system_owners.h"
#include "config/settings/printer_settings.h"

namespace quillo {

/// One entry of "SaveFormats", which the driver passes on unread.
struct SaveFormat {
  std::byte bytes[12];
};
static_assert(sizeof(SaveFormat) == 12);

/// The options of a printer, for its client application. Owns its blocks.
struct PrinterOptions {
  uint32_t unused = 0;
  uint32_t options = 0;             // bits
  GlobalBlock about_string;         // 8-bit text, or null
  GlobalBlock about_icon;           // 8-bit text, or null
  uint32_t save_formats_count = 0;  // entries in save_formats
  GlobalBlock save_formats;         // SaveFormat[]; null when there are none
};

/// Reads the options from printer data and replaces what `options` held. A missing value becomes 0
/// or null and is no error; a count above the number of stored entries is cut to that.
/// SETTINGS_NO_MEMORY when memory was too short for a value.
SettingsResult LoadOptions(const PrinterSettings& settings, PrinterOptions* options);

/// Writes the options to the user's registry, texts and entries only where they are not null. Tries
/// every value and returns the first failure.
SettingsResult StoreOptions(const PrinterSettings& settings, const PrinterOptions& options);

}  // namespace quillo
