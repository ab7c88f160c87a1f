// A registry and a spooler whose every answer is part of the fuzz input. Like the real ones they
// never write beyond the buffer that they are given.
#include "base/windows.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <winspool.h>

#include "config/device_mode/device_mode.h"
#include "config/platform/platform.h"
#include "platform/input.h"

using quillo::Bytes;
using quillo::fuzz::platform;

namespace {

bool Fails() { return platform.Take<uint8_t>() % 8 == 7; }

/// The bytes of a value: of a size that some value has, a device mode of our own, or any.
Bytes TakeValue() {
  static quillo::DeviceMode own;
  constexpr uint16_t kSizes[] = {0, sizeof(uint16_t), sizeof(uint32_t), 3 * sizeof(uint16_t)};
  const auto kind = platform.Take<uint8_t>() % 8;
  if (kind < 4) return platform.TakeBytes(kSizes[kind]);
  if (kind != 4) return platform.TakeBytes(platform.Take<uint16_t>());
  quillo::BuildDefaultDeviceMode(own, nullptr);
  return std::as_bytes(std::span(&own, 1));
}

/// A value: a byte of type, and its bytes, cut at the end of the input.
LSTATUS Answer(DWORD* type, void* data, DWORD* size, DWORD capacity) {
  if (Fails()) return ERROR_FILE_NOT_FOUND;
  const DWORD kind = platform.Take<uint8_t>() % 12;
  if (type != nullptr) *type = kind;
  const Bytes value = TakeValue();
  *size = static_cast<DWORD>(value.size());
  if (data == nullptr) return ERROR_SUCCESS;
  if (value.size() > capacity) return ERROR_MORE_DATA;
  if (!value.empty()) std::memcpy(data, value.data(), value.size());
  return ERROR_SUCCESS;
}

int key;

LSTATUS Open(HKEY* opened) {
  if (Fails()) return ERROR_FILE_NOT_FOUND;
  *opened = reinterpret_cast<HKEY>(&key);
  return ERROR_SUCCESS;
}

}  // namespace

extern "C" {

LSTATUS WINAPI RegOpenKeyExW(HKEY, LPCWSTR, DWORD, REGSAM, HKEY* opened) { return Open(opened); }
LSTATUS WINAPI RegCreateKeyExW(HKEY, LPCWSTR, DWORD, LPWSTR, DWORD, REGSAM, SECURITY_ATTRIBUTES*,
                               HKEY* opened, DWORD*) {
  return Open(opened);
}
LSTATUS WINAPI RegCloseKey(HKEY) { return ERROR_SUCCESS; }
LSTATUS WINAPI RegQueryValueExW(HKEY, LPCWSTR, DWORD*, DWORD* type, BYTE* data, DWORD* size) {
  return Answer(type, data, size, *size);
}
LSTATUS WINAPI RegQueryValueW(HKEY, LPCWSTR, LPWSTR text, LONG* size) {
  DWORD bytes = 0;
  const LSTATUS status = Answer(nullptr, text, &bytes, static_cast<DWORD>(*size));
  *size = static_cast<LONG>(bytes);
  return status;
}
LSTATUS WINAPI RegQueryInfoKeyW(HKEY, LPWSTR, DWORD*, DWORD*, DWORD* subkeys, DWORD*, DWORD*,
                                DWORD*, DWORD*, DWORD*, DWORD*, FILETIME*) {
  *subkeys = platform.Take<uint8_t>();
  return Fails() ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}
LSTATUS WINAPI RegEnumKeyExW(HKEY, DWORD, LPWSTR name, DWORD* length, DWORD*, LPWSTR, DWORD*,
                             FILETIME*) {
  if (platform.Take<uint8_t>() % 2 == 0) {
    *length = static_cast<DWORD>(wsprintfW(name, L"Paper %d", platform.Take<uint8_t>()));
    return ERROR_SUCCESS;
  }
  DWORD bytes = 0;
  const LSTATUS status =
      Answer(nullptr, name, &bytes, (*length - 1) * static_cast<DWORD>(sizeof(wchar_t)));
  if (status != ERROR_SUCCESS) return status;
  *length = bytes / sizeof(wchar_t);
  name[*length] = L'\0';
  return ERROR_SUCCESS;
}
LSTATUS WINAPI RegSetValueExW(HKEY, LPCWSTR, DWORD, DWORD, const BYTE* data, DWORD size) {
  const std::string read(reinterpret_cast<const char*>(data), size);
  return Fails() ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}
LSTATUS WINAPI RegSetValueW(HKEY, LPCWSTR, DWORD, LPCWSTR, DWORD) { return ERROR_SUCCESS; }

BOOL WINAPI OpenPrinterW(LPWSTR, HANDLE* printer, PRINTER_DEFAULTSW*) {
  *printer = &key;
  return !Fails();
}
BOOL WINAPI ClosePrinter(HANDLE) { return TRUE; }
DWORD WINAPI GetPrinterDataW(HANDLE, LPWSTR, DWORD* type, BYTE* data, DWORD capacity, DWORD* size) {
  const LSTATUS status = Answer(type, data, size, capacity);
  return data == nullptr && status == ERROR_SUCCESS ? ERROR_MORE_DATA : static_cast<DWORD>(status);
}
DWORD WINAPI SetPrinterDataW(HANDLE, LPWSTR, DWORD, BYTE*, DWORD) { return ERROR_SUCCESS; }
BOOL WINAPI GetPrinterW(HANDLE, DWORD, BYTE* buffer, DWORD capacity, DWORD* size) {
  constexpr DWORD kSize = sizeof(PRINTER_INFO_2W) + sizeof(quillo::DeviceMode);
  *size = kSize;
  if (buffer == nullptr || capacity < kSize || Fails()) return FALSE;
  auto* info = reinterpret_cast<PRINTER_INFO_2W*>(buffer);
  info->pDevMode = reinterpret_cast<DEVMODEW*>(buffer + sizeof *info);
  const Bytes mode = TakeValue();
  if (!mode.empty()) {
    std::memcpy(info->pDevMode, mode.data(), std::min(mode.size(), sizeof(quillo::DeviceMode)));
  }
  info->pPrinterName = info->pDevMode->dmDeviceName;
  info->pDevMode->dmDeviceName[CCHDEVICENAME - 1] = L'\0';
  return TRUE;
}

/// "Paper %d", the one format.
int WINAPIV wsprintfW(LPWSTR text, LPCWSTR format, ...) {
  __builtin_ms_va_list arguments;
  __builtin_ms_va_start(arguments, format);
  const std::string narrow = "Paper " + std::to_string(__builtin_va_arg(arguments, int));
  __builtin_ms_va_end(arguments);
  std::copy_n(narrow.c_str(), narrow.size() + 1, text);
  return static_cast<int>(narrow.size());
}
int WINAPI lstrlenW(LPCWSTR text) { return static_cast<int>(std::wstring(text).size()); }

}  // extern "C"

namespace quillo {

bool IsAdministrator() { return platform.Take<uint8_t>() % 2 != 0; }
bool DisableFsRedirection(void**) { return false; }
bool RevertFsRedirection(void*) { return false; }

}  // namespace quillo
