#pragma once

#include "base/windows.h"

#include <cstdint>

#include "base/system_owners.h"
#include "config/settings/settings_value.h"

namespace quillo {

/// The strings that a product's installer stores in a printer's data.
struct ProductStrings {
  enum Slot { kProductName, kRegistryKey, kRootDir, kHelpFile, kUrl };

  uint32_t reserved = 0;
  GlobalBlock slots[11];  // wide strings, by Slot; the rest stay null

  /// A string, or null when it is missing or empty.
  [[nodiscard]] const wchar_t* Text(Slot slot) const;
};

/// The "DriverFlags" of a printer; 0 when it has none. Non-zero: it carries product strings.
DWORD ReadDriverFlags(HANDLE printer);

/// Empties `strings` and reads those of a printer. 1 when the printer carries product strings (a
/// missing one stays null), 0 when it does not, SETTINGS_BAD_ARGUMENT for a null argument.
int32_t ReadProductStrings(HANDLE printer, ProductStrings* strings);

/// Reads a printer's "InfoKey", bytes that the driver keeps unread. A missing one is no error.
/// SETTINGS_BAD_ARGUMENT for a null argument.
int32_t ReadInfoKey(HANDLE printer, GlobalBlock* data, DWORD* size);

}  // namespace quillo
