#pragma once

#include "base/windows.h"

#include <filesystem>
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
    std::filesystem::create_directory(path_);
    wcscpy_s(ThreadSettings().temporary_directory, path_.c_str());
  }
  /// No directory that has files in it is removed.
  ~TemporaryDirectory() {
    std::error_code not_empty;
    std::filesystem::remove(path_, not_empty);
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  [[nodiscard]] auto Files() const {
    return std::distance(std::filesystem::directory_iterator(path_), {});
  }

 private:
  const std::filesystem::path path_ = std::filesystem::temp_directory_path() /
                                      (L"qk-test-" + std::to_wstring(GetCurrentProcessId()));
};

}  // namespace quillo::imaging
