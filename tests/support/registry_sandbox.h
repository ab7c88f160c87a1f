#pragma once

#include "base/windows.h"

#include "base/kernel_owners.h"

namespace quillo::test {

/// For as long as it lives, HKEY_CURRENT_USER and HKEY_LOCAL_MACHINE of this process are two keys
/// of its own, removed at its end. They are empty but for a copy of what the spooler knows, so that
/// printers can be opened and their data changed. One at a time.
class RegistrySandbox {
 public:
  RegistrySandbox() {
    RegDeleteTreeW(HKEY_CURRENT_USER, kPath);
    active_ = RegCreateKeyW(HKEY_CURRENT_USER, kPath, root_.Receive()) == ERROR_SUCCESS &&
              CopySpooler() && Override(HKEY_LOCAL_MACHINE, L"machine") &&
              Override(HKEY_CURRENT_USER, L"user");
  }
  ~RegistrySandbox() {
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    root_.Reset();
    RegDeleteTreeW(HKEY_CURRENT_USER, kPath);
  }
  RegistrySandbox(const RegistrySandbox&) = delete;
  RegistrySandbox& operator=(const RegistrySandbox&) = delete;

  [[nodiscard]] bool Active() const { return active_; }

  /// Makes HKEY_CURRENT_USER the hive of another user of this name.
  [[nodiscard]] bool SwitchUser(const wchar_t* name) { return Override(HKEY_CURRENT_USER, name); }

 private:
  static constexpr wchar_t kPath[] = L"Software\\Quillo test hives";
  static constexpr wchar_t kSpooler[] = L"System\\CurrentControlSet\\Control\\Print";

  bool CopySpooler() {
    RegistryKey source;
    if (RegOpenKeyW(HKEY_LOCAL_MACHINE, kSpooler, source.Receive()) != ERROR_SUCCESS) return true;
    RegistryKey machine;
    RegistryKey copy;
    return RegCreateKeyW(root_.Get(), L"machine", machine.Receive()) == ERROR_SUCCESS &&
           RegCreateKeyW(machine.Get(), kSpooler, copy.Receive()) == ERROR_SUCCESS &&
           RegCopyTreeW(source.Get(), nullptr, copy.Get()) == ERROR_SUCCESS;
  }

  bool Override(HKEY predefined, const wchar_t* name) {
    RegistryKey key;
    return RegCreateKeyW(root_.Get(), name, key.Receive()) == ERROR_SUCCESS &&
           RegOverridePredefKey(predefined, key.Get()) == ERROR_SUCCESS;
  }

  RegistryKey root_;
  bool active_ = false;
};

}  // namespace quillo::test
