#pragma once

#include "base/windows.h"

#include <cstdint>

#include "base/bytes.h"
#include "base/system_owners.h"

// Named values of the registry and of printer data. Every operation of config/settings and
// config/papers that can fail returns a SettingsResult, or an empty owner or false where there is
// nothing to report but absence. Values come from outside: their sizes are those really read.

namespace quillo {

enum SettingsResult : int32_t {
  SETTINGS_OK = 1,
  SETTINGS_NO_MEMORY = -1,
  SETTINGS_BAD_ARGUMENT = -13,
  SETTINGS_SIZE_ONLY = -1001,     // no buffer was given: the size of the value was stored
  SETTINGS_READ_FAILED = -1005,   // the key or value could not be read
  SETTINGS_WRITE_FAILED = -1006,  // nothing was written
  SETTINGS_KEY_FAILED = -1007,    // the key could not be created
  SETTINGS_SET_FAILED = -1008,    // the value could not be set in its key
  SETTINGS_NOT_OPEN = -1016,
};

/// Where a value is read to, and what it was.
struct ValueBuffer {
  void* data = nullptr;  // null asks for the size only
  DWORD capacity = 0;    // bytes at `data`
  DWORD type = REG_NONE;
  DWORD size = 0;  // bytes of the value; when reading failed, what it would have needed, or 0
};

/// A buffer that takes one plain object.
template <typename T>
ValueBuffer BufferFor(T& object) {
  return {&object, sizeof(object)};
}

/// Opens a key for reading; empty when that fails or `path` is null.
RegistryKey OpenKey(HKEY parent, const wchar_t* path);

/// Opens a key for writing and creates it where it is missing; empty when that fails.
RegistryKey CreateKey(HKEY parent, const wchar_t* path);

/// Reads a value of a key; a null key has no values.
SettingsResult ReadRegistryValue(HKEY key, const wchar_t* name, ValueBuffer& value);

/// Sets a value of a key; SETTINGS_KEY_FAILED for a null key.
SettingsResult WriteRegistryValue(HKEY key, const wchar_t* name, DWORD type, Bytes data);

/// Reads a value of printer data.
SettingsResult ReadPrinterData(HANDLE printer, const wchar_t* name, ValueBuffer& value);

/// Sets a value of printer data; SETTINGS_WRITE_FAILED when the spooler refuses.
SettingsResult WritePrinterData(HANDLE printer, const wchar_t* name, DWORD type, Bytes data);

/// A value of printer data, followed by two zero bytes that end a string of either width; an odd
/// last byte is part of the value. Empty when it cannot be read.
struct PrinterDataBlock {
  GlobalBlock block;
  DWORD type = REG_NONE;
  DWORD size = 0;  // bytes, without the two
  SettingsResult result = SETTINGS_READ_FAILED;
};
PrinterDataBlock LoadPrinterData(HANDLE printer, const wchar_t* name);

/// A string of printer data, always terminated; empty when it cannot be read.
GlobalBlock LoadPrinterString(HANDLE printer, const wchar_t* name);

}  // namespace quillo
