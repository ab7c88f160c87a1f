#pragma once

#include "base/windows.h"

#include <cstdint>

#include "base/bytes.h"
#include "base/system_owners.h"

// Named values of the registry and of printer data, read and written with one set of results.
// What is read comes from outside: sizes are those that were really there.

namespace quillo {

enum SettingsResult : int32_t {
  SETTINGS_OK = 1,
  SETTINGS_NO_MEMORY = -1,
  SETTINGS_BAD_ARGUMENT = -13,
  SETTINGS_SIZE_ONLY = -1001,     // the value is there; no buffer was given, so only its size came
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

/// Opens a key for reading; empty when it cannot be. A null path opens nothing.
RegistryKey OpenKey(HKEY parent, const wchar_t* path);

/// Opens a key for writing and makes it where it is missing; empty when it cannot be.
RegistryKey CreateKey(HKEY parent, const wchar_t* path);

/// Reads a value of a key (a null key has none).
SettingsResult ReadRegistryValue(HKEY key, const wchar_t* name, ValueBuffer& value);

/// Sets a value of a key; SETTINGS_KEY_FAILED for a null key.
SettingsResult WriteRegistryValue(HKEY key, const wchar_t* name, DWORD type, Bytes data);

/// Reads a value of printer data.
SettingsResult ReadPrinterData(HANDLE printer, const wchar_t* name, ValueBuffer& value);

/// Sets a value of printer data; SETTINGS_WRITE_FAILED when the spooler refuses.
SettingsResult WritePrinterData(HANDLE printer, const wchar_t* name, DWORD type, Bytes data);

/// A value of printer data in a block of its own, with two zero bytes behind it that end a string
/// of either width; an odd last byte counts as part of the value. Empty when it cannot be read.
struct PrinterDataBlock {
  GlobalBlock block;
  DWORD type = REG_NONE;
  DWORD size = 0;  // bytes, without the two
  SettingsResult result = SETTINGS_READ_FAILED;
};
PrinterDataBlock LoadPrinterData(HANDLE printer, const wchar_t* name);

/// A string of printer data, with a terminator whatever was stored; empty when it cannot be read.
GlobalBlock LoadPrinterString(HANDLE printer, const wchar_t* name);

}  // namespace quillo
