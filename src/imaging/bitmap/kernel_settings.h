#pragma once

#include "base/windows.h"

#include <cstdint>

#include "imaging/pixels/progress.h"

namespace quillo::imaging {

/// The kernel's settings of one thread.
struct KernelSettings {
  uint32_t process_value;       // copied into every record
  int32_t x_resolution;         // dots per inch; 150 when below 1
  int32_t y_resolution;         // dots per inch; 150 when below 1
  int64_t memory_threshold;     // bytes up to which a bitmap stays in memory; 16 MiB when below 1
  int64_t tile_size;            // bytes; 16 MiB when below 1
  int64_t memory_reserve;       // bytes to keep free; negative: a percentage of the memory
  int64_t maximum_memory;       // bytes for one bitmap; negative: a percentage of the memory
  uint32_t memory_type;         // of bitmaps that name none (memory_type.h)
  uint32_t display_mode;        // display-mode flags
  uint16_t display_table[256];  // levels; the identity once kModeResetTable was set
  StatusCallback status;        // or null
  void* status_user;            //
  wchar_t temporary_directory[MAX_PATH];  // empty: the process's TEMP folder
};

/// The calling thread's settings, allocated on first use and freed with the thread. When that
/// fails, the process's one fallback block.
KernelSettings& ThreadSettings();

}  // namespace quillo::imaging
