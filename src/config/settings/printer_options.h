#pragma once

#include <cstddef>
#include <cstdint>

#include "base/system_owners.h"
#include "config/settings/printer_settings.h"

namespace quillo {

/// One entry of "SaveFormats". The driver passes it on and does not look into it.
struct SaveFormat {
  std::byte bytes[12];
};
static_assert(sizeof(SaveFormat) == 12);

/// The options of a printer, for its client. Dropping it releases what it holds.
struct PrinterOptions {
  uint32_t unused = 0;
  uint32_t options = 0;             // bits
  GlobalBlock about_string;         // 8-bit text, or null
  GlobalBlock about_icon;           // 8-bit text, or null
  uint32_t save_formats_count = 0;  // entries in save_formats
  GlobalBlock save_formats;         // SaveFormat[]; null when there are none
};

/// Reads the options from printer data, whatever `options` held before. A value that is missing
/// stays 0 or null and is no error; a count that the stored entries do not bear out is cut to them.
/// SETTINGS_NO_MEMORY when something could not be kept.
SettingsResult LoadOptions(const PrinterSettings& settings, PrinterOptions* options);

/// Writes the options to the user's registry; texts and entries only where they are not null. The
/// texts are 8-bit under a type for wide ones, on purpose. The first failure, after all has been
/// tried.
SettingsResult StoreOptions(const PrinterSettings& settings, const PrinterOptions& options);

}  // namespace quillo
