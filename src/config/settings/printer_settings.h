#pragma once

#include "base/windows.h"

#include <winspool.h>

#include "base/system_owners.h"
#include "config/settings/product_strings.h"
#include "config/settings/settings_value.h"

namespace quillo {

/// The key, in either hive, with the own keys of printers that have no other product key.
inline constexpr wchar_t kBuiltInProductKey[] =
    L"Software\\Wow6432Node\\Halvard Technologies, Inc.\\Quillo 6.0";

/// Which of the two places a value operation goes to.
enum class SettingsPlace { kPrinterData, kRegistry };

/// Which hive a printer's own key is in.
enum class SettingsStore : uint32_t { kMachine = 0, kUser = 1 };

/// The settings of one printer, constructed for one load or store.
///
/// Its own key in either hive is the product key, a backslash and the printer name; the product key
/// is the printer's "RegistryKey" when it has non-zero "DriverFlags", else the built-in one. All
/// operations return SETTINGS_NOT_OPEN when the printer could not be opened, and
/// SETTINGS_BAD_ARGUMENT for a null name or output.
class PrinterSettings {
 public:
  /// Opens a printer. `printer_name` must outlive this. All printers of the process are opened with
  /// the `access` of the first.
  PrinterSettings(const wchar_t* printer_name, DWORD access);

  /// Works on an open printer of the caller, who keeps it.
  explicit PrinterSettings(HANDLE printer);

  /// Virtual for other modules of the product, which derive from this.
  virtual ~PrinterSettings() = default;
  PrinterSettings(const PrinterSettings&) = delete;
  PrinterSettings& operator=(const PrinterSettings&) = delete;

  [[nodiscard]] bool IsOpen() const { return is_open_; }
  [[nodiscard]] HANDLE Printer() const { return printer_; }
  [[nodiscard]] DWORD DriverFlags() const { return driver_flags_; }
  [[nodiscard]] const ProductStrings& Strings() const { return strings_; }
  [[nodiscard]] const void* InfoKey() const { return info_key_.Get(); }
  [[nodiscard]] DWORD InfoKeySize() const { return info_key_size_; }

  /// From printer data, or from the user's registry: the key that "RegistryKey" names, or where
  /// that is missing the printer's own key under the built-in product key.
  SettingsResult Read(const wchar_t* name, ValueBuffer* value, SettingsPlace source) const;

  /// To printer data, or to the user's registry: the printer's name below "RegistryKey" (unlike
  /// Read), or where that cannot be created the own key under the built-in product key.
  SettingsResult Write(const wchar_t* name, DWORD type, Bytes data, SettingsPlace target) const;

  /// From and to the printer's own key in one hive.
  SettingsResult ReadStore(const wchar_t* name, ValueBuffer* value, SettingsStore store) const;
  SettingsResult WriteStore(const wchar_t* name, DWORD type, Bytes data, SettingsStore store) const;

  /// From and to the older key that all printers of a user share, for other modules of the product.
  /// While the key is missing, the value is first copied there from printer data.
  SettingsResult ReadLegacy(const wchar_t* name, ValueBuffer* value) const;
  SettingsResult WriteLegacy(const wchar_t* name, DWORD type, Bytes data) const;

  /// The printer's own key in one hive; empty when it is missing or cannot be created.
  [[nodiscard]] RegistryKey OpenStoreKey(SettingsStore store) const;
  [[nodiscard]] RegistryKey CreateStoreKey(SettingsStore store) const;

 private:
  void ReadProductValues();
  [[nodiscard]] GlobalBlock OwnKeyPath(const wchar_t* product_key) const;
  [[nodiscard]] const wchar_t* ProductKey() const;
  [[nodiscard]] RegistryKey OpenGenericKey() const;
  [[nodiscard]] RegistryKey CreateGenericKey() const;

  HANDLE printer_ = nullptr;
  PrinterHandle owned_printer_;  // null when the handle is the caller's
  bool is_open_ = false;
  DWORD driver_flags_ = 0;
  GlobalBlock info_key_;
  DWORD info_key_size_ = 0;  // bytes
  const wchar_t* printer_name_ = nullptr;
  GlobalBlock name_copy_;   // what printer_name_ points to when it came from the spooler
  ProductStrings strings_;  // all null unless driver_flags_ is non-zero
};

}  // namespace quillo
