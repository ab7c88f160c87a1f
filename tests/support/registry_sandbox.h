#pragma once

#include "base/windows.h"

#include "base/kernel_owners.h"

namespace quillo::test {

/// For as long as it lives, HKEY_CURRENT_USER and HKEY_LOCAL_MACHINE of this process are two empty
/// keys of its own, removed at its end. One at a time.
///
/// Services outside the process (the spooler) are not touched; what they read inside it is.
class RegistrySandbox {
 public:
  RegistrySandbox() {
    RegDeleteTreeW(HKEY_CURRENT_USER, kPath);
    active_ = RegCreateKeyW(HKEY_CURRENT_USER, kPath, root_.Receive()) == ERROR_SUCCESS &&
              Override(HKEY_LOCAL_MACHINE, L"machine") && Override(HKEY_CURRENT_USER, L"user");
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

  bool Override(HKEY predefined, const wchar_t* name) {
    RegistryKey key;
    return RegCreateKeyW(root_.Get(), name, key.Receive()) == ERROR_SUCCESS &&
           RegOverridePredefKey(predefined, key.Get()) == ERROR_SUCCESS;
  }

  RegistryKey root_;
  bool active_ = false;
};

}  // namespace quillo::test
