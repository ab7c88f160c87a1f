#include "imaging/bitmap/kernel_settings.h"

#include "base/system_owners.h"
#include "imaging/bitmap/memory_type.h"

namespace quillo::imaging {
namespace {

// Small bitmaps live in a section; large ones too, while the machine has the memory. Beyond that
// they go to a temporary file and not to tiles, for a tiled bitmap cannot be presented to GDI.
constexpr KernelSettings kDefaults = {
    .process_value = 0,
    .x_resolution = 0,
    .y_resolution = 0,
    .memory_threshold = 0,
    .tile_size = 0,
    .memory_reserve = 0,
    .maximum_memory = -100,
    .memory_type = kMemorySectionElseFile,
    .display_mode = 0,
    .display_table = {},
    .status = nullptr,
    .status_user = nullptr,
    .temporary_directory = {},
};

constinit KernelSettings fallback = kDefaults;

void WINAPI ReleaseBlock(void* block) { HeapBlock::Adopt(block); }

/// The process's slot for one block per thread. A fiber-local slot is a thread-local one that has a
/// destructor: Windows calls it when a thread ends, and for all threads when the slot is freed,
/// which happens when the module is unloaded.
class Slot {
 public:
  constexpr Slot() = default;
  ~Slot() {
    if (index_ != kNone) FlsFree(static_cast<DWORD>(index_));
  }
  Slot(const Slot&) = delete;
  Slot& operator=(const Slot&) = delete;

  /// Allocated on first use; FLS_OUT_OF_INDEXES when the process has no slot left.
  DWORD Index() {
    if (index_ == kNone) {
      const DWORD fresh = FlsAlloc(ReleaseBlock);
      if (fresh == FLS_OUT_OF_INDEXES) return fresh;
      if (InterlockedCompareExchange(&index_, static_cast<LONG>(fresh), kNone) != kNone) {
        FlsFree(fresh);  // another thread was faster
      }
    }
    return static_cast<DWORD>(index_);
  }

 private:
  static constexpr LONG kNone = static_cast<LONG>(FLS_OUT_OF_INDEXES);
  volatile LONG index_ = kNone;
};

constinit Slot slot;

}  // namespace

KernelSettings& ThreadSettings() {
  const DWORD index = slot.Index();
  if (index == FLS_OUT_OF_INDEXES) return fallback;
  if (auto* settings = static_cast<KernelSettings*>(FlsGetValue(index))) return *settings;
  HeapBlock block(sizeof(KernelSettings));
  if (!block) return fallback;
  *block.As<KernelSettings>() = kDefaults;
  if (!FlsSetValue(index, block.Get())) return fallback;
  return *static_cast<KernelSettings*>(block.Detach());
}

}  // namespace quillo::imaging
