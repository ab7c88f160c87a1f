#include "config/settings/settings_value.h"

#include <winspool.h>

namespace quillo {

namespace {

constexpr size_t kTerminatorBytes = sizeof(wchar_t);

BYTE* ByteBuffer(void* data) { return static_cast<BYTE*>(data); }

/// The result of a system call that read a value. Asked for the size only, the spooler reports more
/// data where the registry reports success.
SettingsResult ReadResult(LSTATUS status, const ValueBuffer& value) {
  if (value.data == nullptr && (status == ERROR_SUCCESS || status == ERROR_MORE_DATA)) {
    return SETTINGS_SIZE_ONLY;
  }
  return status == ERROR_SUCCESS ? SETTINGS_OK : SETTINGS_READ_FAILED;
}

}  // namespace

RegistryKey OpenKey(HKEY parent, const wchar_t* path) {
  RegistryKey key;
  if (path == nullptr || RegOpenKeyExW(parent, path, 0, KEY_READ, key.Receive()) != ERROR_SUCCESS) {
    return RegistryKey();
  }
  return key;
}

RegistryKey CreateKey(HKEY parent, const wchar_t* path) {
  RegistryKey key;
  if (path == nullptr ||
      RegCreateKeyExW(parent, path, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_READ | KEY_WRITE,
                      nullptr, key.Receive(), nullptr) != ERROR_SUCCESS) {
    return RegistryKey();
  }
  return key;
}

SettingsResult ReadRegistryValue(HKEY key, const wchar_t* name, ValueBuffer& value) {
  if (key == nullptr) return SETTINGS_READ_FAILED;
  value.size = value.data != nullptr ? value.capacity : 0;
  return ReadResult(
      RegQueryValueExW(key, name, nullptr, &value.type, ByteBuffer(value.data), &value.size),
      value);
}

SettingsResult WriteRegistryValue(HKEY key, const wchar_t* name, DWORD type, Bytes data) {
  if (key == nullptr) return SETTINGS_KEY_FAILED;
  const LSTATUS status =
      RegSetValueExW(key, name, 0, type, reinterpret_cast<const BYTE*>(data.data()),
                     static_cast<DWORD>(data.size()));
  return status == ERROR_SUCCESS ? SETTINGS_OK : SETTINGS_SET_FAILED;
}

SettingsResult ReadPrinterData(HANDLE printer, const wchar_t* name, ValueBuffer& value) {
  value.size = 0;
  const DWORD status =
      GetPrinterDataW(printer, const_cast<wchar_t*>(name), &value.type, ByteBuffer(value.data),
                      value.data != nullptr ? value.capacity : 0, &value.size);
  return ReadResult(static_cast<LSTATUS>(status), value);
}

SettingsResult WritePrinterData(HANDLE printer, const wchar_t* name, DWORD type, Bytes data) {
  const DWORD status = SetPrinterDataW(printer, const_cast<wchar_t*>(name), type,
                                       reinterpret_cast<BYTE*>(const_cast<std::byte*>(data.data())),
                                       static_cast<DWORD>(data.size()));
  return status == ERROR_SUCCESS ? SETTINGS_OK : SETTINGS_WRITE_FAILED;
}

PrinterDataBlock LoadPrinterData(HANDLE printer, const wchar_t* name) {
  PrinterDataBlock loaded;
  ValueBuffer value;
  loaded.result = ReadPrinterData(printer, name, value);
  if (loaded.result != SETTINGS_SIZE_ONLY) return loaded;
  GlobalBlock block = GlobalBlock::Allocate(size_t{value.size} + kTerminatorBytes);
  if (!block) {
    loaded.result = SETTINGS_NO_MEMORY;
    return loaded;
  }
  // A value that has grown since does not fit and counts as unread.
  value.data = block.Get();
  value.capacity = value.size;
  loaded.result = ReadPrinterData(printer, name, value);
  if (loaded.result != SETTINGS_OK) return loaded;
  ZeroMemory(ByteBuffer(block.Get()) + value.size, kTerminatorBytes);
  loaded.block = std::move(block);
  loaded.type = value.type;
  loaded.size = value.size;
  return loaded;
}

GlobalBlock LoadPrinterString(HANDLE printer, const wchar_t* name) {
  PrinterDataBlock text = LoadPrinterData(printer, name);
  // Half a character at the end is no part of the string.
  if (text.size % sizeof(wchar_t) != 0) ByteBuffer(text.block.Get())[text.size - 1] = 0;
  return std::move(text.block);
}

}  // namespace quillo
