#pragma once

#include "base/windows.h"

#include <string>

#include "imaging/bitmap/kernel_settings.h"

namespace quillo::imaging {

/// Lets a test change the thread's settings, and puts them back.
class SettingsScope {
 public:
  SettingsScope() : before_(ThreadSettings()) {}
  ~SettingsScope() { ThreadSettings() = before_; }
  SettingsScope(const SettingsScope&) = delete;
  SettingsScope& operator=(const SettingsScope&) = delete;
  KernelSettings* operator->() { return &ThreadSettings(); }

 private:
  KernelSettings before_;
};

/// A directory for the kernel's temporary files, which must be empty when the test ends.
class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    wchar_t base[MAX_PATH + 1];
    GetTempPathW(MAX_PATH, base);
    path_ = std::wstring(base) + L"qk-test-" + std::to_wstring(GetCurrentProcessId());
    CreateDirectoryW(path_.c_str(), nullptr);
    wcscpy_s(ThreadSettings().temporary_directory, path_.c_str());
  }
  /// Windows removes no directory that has files in it.
  ~TemporaryDirectory() { RemoveDirectoryW(path_.c_str()); }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  [[nodiscard]] int Files() const {
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW((path_ + L"\\*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return -1;
    int files = 0;
    do {
      if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) ++files;
    } while (FindNextFileW(search, &found));
    FindClose(search);
    return files;
  }

 private:
  std::wstring path_;
};

}  // namespace quillo::imaging
