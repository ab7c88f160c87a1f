#include "config/settings/printer_settings.h"

#include <cstring>
#include <cwchar>
#include <utility>

#include "config/platform/platform.h"
#include "config/settings/printer_info.h"

namespace quillo {

namespace {

constexpr wchar_t kLegacyKey[] = L"Printers\\VORNIX\\";

/// The defaults that every printer is opened with.
///
/// Compatibility: the access mask of the process's first caller serves all later ones. Kept for
/// installed printers, whose security descriptors were set up for it.
PRINTER_DEFAULTSW* OpenDefaults(DWORD access) {
  static PRINTER_DEFAULTSW defaults = {};
  static bool chosen = false;
  if (!std::exchange(chosen, true)) defaults.DesiredAccess = access;
  return &defaults;
}

HKEY RootOf(SettingsStore store) {
  return store == SettingsStore::kMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

/// "left\right"; empty when one is null or memory is short.
GlobalBlock JoinPath(const wchar_t* left, const wchar_t* right) {
  if (left == nullptr || right == nullptr) return GlobalBlock();
  const size_t left_length = std::wcslen(left);
  const size_t right_length = std::wcslen(right);
  GlobalBlock path = GlobalBlock::Allocate((left_length + right_length + 2) * sizeof(wchar_t));
  if (!path) return path;
  auto* text = static_cast<wchar_t*>(path.Get());
  std::memcpy(text, left, left_length * sizeof(wchar_t));
  text[left_length] = L'\\';
  std::memcpy(text + left_length + 1, right, right_length * sizeof(wchar_t));
  return path;
}

const wchar_t* TextOf(const GlobalBlock& block) { return static_cast<const wchar_t*>(block.Get()); }

}  // namespace

PrinterSettings::PrinterSettings(const wchar_t* printer_name, DWORD access)
    : printer_name_(printer_name) {
  if (!OpenPrinterW(const_cast<wchar_t*>(printer_name), owned_printer_.Receive(),
                    OpenDefaults(access))) {
    (void)owned_printer_.Detach();
    return;
  }
  printer_ = owned_printer_.Get();
  is_open_ = true;
  ReadProductValues();
}

PrinterSettings::PrinterSettings(HANDLE printer) : printer_(printer), is_open_(printer != nullptr) {
  if (!is_open_) return;
  const PrinterInfo<PRINTER_INFO_2W> info(printer, 2);
  if (info && info->pPrinterName != nullptr) {
    const size_t bytes = (std::wcslen(info->pPrinterName) + 1) * sizeof(wchar_t);
    name_copy_ = GlobalBlock::Allocate(bytes);
    if (name_copy_) std::memcpy(name_copy_.Get(), info->pPrinterName, bytes);
    printer_name_ = TextOf(name_copy_);
  }
  ReadProductValues();
}

void PrinterSettings::ReadProductValues() {
  driver_flags_ = ReadDriverFlags(printer_);
  if (driver_flags_ == 0) return;
  ReadProductStrings(printer_, &strings_);
  ReadInfoKey(printer_, &info_key_, &info_key_size_);
}

GlobalBlock PrinterSettings::OwnKeyPath(const wchar_t* product_key) const {
  return JoinPath(product_key, printer_name_);
}

const wchar_t* PrinterSettings::ProductKey() const {
  const wchar_t* key = strings_.Text(ProductStrings::kRegistryKey);
  return key != nullptr ? key : kBuiltInProductKey;
}

RegistryKey PrinterSettings::OpenStoreKey(SettingsStore store) const {
  return OpenKey(RootOf(store), TextOf(OwnKeyPath(ProductKey())));
}

RegistryKey PrinterSettings::CreateStoreKey(SettingsStore store) const {
  return CreateKey(RootOf(store), TextOf(OwnKeyPath(ProductKey())));
}

/// The key that Read uses.
///
/// Compatibility: "RegistryKey" itself, although Write appends the printer's name. Kept for
/// settings that installers have stored there for all printers of a product.
RegistryKey PrinterSettings::OpenGenericKey() const {
  const GlobalBlock registry_key = LoadPrinterString(printer_, L"RegistryKey");
  if (registry_key && TextOf(registry_key)[0] != L'\0') {
    RegistryKey key = OpenKey(HKEY_CURRENT_USER, TextOf(registry_key));
    if (key) return key;
  }
  return OpenKey(HKEY_CURRENT_USER, TextOf(OwnKeyPath(kBuiltInProductKey)));
}

RegistryKey PrinterSettings::CreateGenericKey() const {
  const GlobalBlock registry_key = LoadPrinterString(printer_, L"RegistryKey");
  if (registry_key && TextOf(registry_key)[0] != L'\0') {
    RegistryKey key = CreateKey(HKEY_CURRENT_USER, TextOf(OwnKeyPath(TextOf(registry_key))));
    if (key) return key;
  }
  return CreateKey(HKEY_CURRENT_USER, TextOf(OwnKeyPath(kBuiltInProductKey)));
}

SettingsResult PrinterSettings::Read(const wchar_t* name, ValueBuffer* value,
                                     SettingsPlace source) const {
  if (!is_open_) return SETTINGS_NOT_OPEN;
  if (name == nullptr || value == nullptr) return SETTINGS_BAD_ARGUMENT;
  if (source == SettingsPlace::kPrinterData) return ReadPrinterData(printer_, name, *value);
  const FsRedirectionOff redirection_off;
  return ReadRegistryValue(OpenGenericKey().Get(), name, *value);
}

SettingsResult PrinterSettings::Write(const wchar_t* name, DWORD type, Bytes data,
                                      SettingsPlace target) const {
  if (!is_open_) return SETTINGS_NOT_OPEN;
  if (name == nullptr) return SETTINGS_BAD_ARGUMENT;
  if (target == SettingsPlace::kPrinterData) return WritePrinterData(printer_, name, type, data);
  const FsRedirectionOff redirection_off;
  return WriteRegistryValue(CreateGenericKey().Get(), name, type, data);
}

SettingsResult PrinterSettings::ReadStore(const wchar_t* name, ValueBuffer* value,
                                          SettingsStore store) const {
  if (!is_open_) return SETTINGS_NOT_OPEN;
  if (name == nullptr || value == nullptr) return SETTINGS_BAD_ARGUMENT;
  const FsRedirectionOff redirection_off;
  return ReadRegistryValue(OpenStoreKey(store).Get(), name, *value);
}

SettingsResult PrinterSettings::WriteStore(const wchar_t* name, DWORD type, Bytes data,
                                           SettingsStore store) const {
  if (!is_open_) return SETTINGS_NOT_OPEN;
  if (name == nullptr) return SETTINGS_BAD_ARGUMENT;
  const FsRedirectionOff redirection_off;
  return WriteRegistryValue(CreateStoreKey(store).Get(), name, type, data);
}

SettingsResult PrinterSettings::ReadLegacy(const wchar_t* name, ValueBuffer* value) const {
  if (!is_open_) return SETTINGS_NOT_OPEN;
  if (name == nullptr || value == nullptr) return SETTINGS_BAD_ARGUMENT;
  const FsRedirectionOff redirection_off;
  RegistryKey key = OpenKey(HKEY_CURRENT_USER, kLegacyKey);
  if (!key) {
    const PrinterDataBlock stored = LoadPrinterData(printer_, name);
    if (!stored.block) return stored.result;
    key = CreateKey(HKEY_CURRENT_USER, kLegacyKey);
    WriteRegistryValue(key.Get(), name, stored.type,
                       Bytes(static_cast<const std::byte*>(stored.block.Get()), stored.size));
  }
  return ReadRegistryValue(key.Get(), name, *value);
}

SettingsResult PrinterSettings::WriteLegacy(const wchar_t* name, DWORD type, Bytes data) const {
  if (!is_open_) return SETTINGS_NOT_OPEN;
  if (name == nullptr) return SETTINGS_BAD_ARGUMENT;
  const FsRedirectionOff redirection_off;
  return WriteRegistryValue(CreateKey(HKEY_CURRENT_USER, kLegacyKey).Get(), name, type, data);
}

}  // namespace quillo
