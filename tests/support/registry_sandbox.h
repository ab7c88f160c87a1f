#pragma once

#include "base/windows.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/system_owners.h"

namespace quillo::test {

/// For as long as it lives, HKEY_CURRENT_USER and HKEY_LOCAL_MACHINE of this process are two keys
/// of its own, removed at its end. They are empty but for a copy of what the spooler knows, so that
/// printers can be opened and their data changed. One at a time.
class RegistrySandbox {
 public:
  RegistrySandbox() {
    RegDeleteTreeW(HKEY_CURRENT_USER, kPath);
    RegistryKey spooler, copy;
    RegOpenKeyW(HKEY_LOCAL_MACHINE, kSpooler, spooler.Receive());
    RegCreateKeyW(HKEY_CURRENT_USER, kPath, root_.Receive());
    const std::wstring machine = std::wstring(L"machine\\") + kSpooler;
    RegCreateKeyW(root_.Get(), machine.c_str(), copy.Receive());
    RegCopyTreeW(spooler.Get(), nullptr, copy.Get());
    Override(HKEY_LOCAL_MACHINE, L"machine");
    SwitchUser(L"user");
  }
  ~RegistrySandbox() {
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    root_.Reset();
    RegDeleteTreeW(HKEY_CURRENT_USER, kPath);
  }
  RegistrySandbox(const RegistrySandbox&) = delete;
  RegistrySandbox& operator=(const RegistrySandbox&) = delete;

  /// Makes HKEY_CURRENT_USER the hive of the user of this name; at first that is "user".
  void SwitchUser(const wchar_t* name) { Override(HKEY_CURRENT_USER, name); }

 private:
  static constexpr wchar_t kPath[] = L"Software\\Quillo test hives";
  static constexpr wchar_t kSpooler[] = L"System\\CurrentControlSet\\Control\\Print";

  void Override(HKEY predefined, const wchar_t* name) {
    RegistryKey key;
    RegCreateKeyW(root_.Get(), name, key.Receive());
    RegOverridePredefKey(predefined, key.Get());
  }

  RegistryKey root_;
};

/// A value as it lies in the registry or in printer data.
struct StoredValue {
  DWORD type = REG_NONE;
  std::vector<std::byte> bytes;
  friend bool operator==(const StoredValue&, const StoredValue&) = default;
};

template <typename T>
StoredValue Binary(const T& object, DWORD type = REG_BINARY) {
  const auto bytes = std::as_bytes(std::span(&object, 1));
  return {type, {bytes.begin(), bytes.end()}};
}
inline StoredValue Number(DWORD number) { return Binary(number, REG_DWORD); }
inline StoredValue Zeros(size_t size) { return {REG_BINARY, std::vector<std::byte>(size)}; }
/// A text without its terminator.
template <typename Char>
StoredValue Text(const std::basic_string<Char>& text) {
  const auto bytes = std::as_bytes(std::span(text));
  return {REG_SZ, {bytes.begin(), bytes.end()}};
}
inline StoredValue Terminated(const std::wstring& text) { return Text(text + L'\0'); }

inline void PutValue(HKEY root, const std::wstring& path, const wchar_t* name, StoredValue value) {
  RegistryKey key;
  RegCreateKeyW(root, path.c_str(), key.Receive());
  const auto size = static_cast<DWORD>(value.bytes.size());
  // A terminator right behind a text would be stored with it.
  value.bytes.resize(size + sizeof(wchar_t), std::byte{'#'});
  RegSetValueExW(key.Get(), name, 0, value.type, reinterpret_cast<BYTE*>(value.bytes.data()), size);
}

inline std::optional<StoredValue> GetValue(HKEY root, const std::wstring& path,
                                           const wchar_t* name) {
  StoredValue value = Zeros(4096);
  auto size = static_cast<DWORD>(value.bytes.size());
  if (RegGetValueW(root, path.c_str(), name, RRF_RT_ANY | RRF_NOEXPAND, &value.type,
                   value.bytes.data(), &size) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  value.bytes.resize(size);
  return value;
}

}  // namespace quillo::test
