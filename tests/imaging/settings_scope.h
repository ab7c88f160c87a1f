#pragma once

#include "base/windows.h"

#include <string>

#include "imaging/bitmap/kernel_settings.h"
#include "imaging/lifecycle/create.h"

namespace quillo::imaging {

/// A bitmap of the current form in blue, green, red or with the default palette.
inline BitmapDescription Sized(uint32_t width, uint32_t height, uint32_t bits,
                               uint32_t memory_type = kMemorySection,
                               uint32_t view_perspective = kTopRowFirst) {
  const uint32_t order = bits > 8 ? kOrderColour : kOrderPalette;
  return {.memory_type = memory_type,
          .width = width,
          .height = height,
          .bits_per_pixel = bits,
          .colour_order = order,
          .view_perspective = view_perspective};
}

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
