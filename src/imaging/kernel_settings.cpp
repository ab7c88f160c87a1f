#include "imaging/kernel_settings.h"

#include "base/kernel_owners.h"
#include "imaging/storage_choice.h"

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
    .memory_type = kSectionElseDisk,
    .display_mode = 0,
    .display_table = {},
    .status = nullptr,
    .status_user = nullptr,
    .temporary_directory = {},
};

constinit KernelSettings fallback = kDefaults;
constinit volatile LONG slot = static_cast<LONG>(TLS_OUT_OF_INDEXES);

DWORD Slot() {
  const auto known = static_cast<DWORD>(slot);
  if (known != TLS_OUT_OF_INDEXES) return known;
  const DWORD fresh = TlsAlloc();
  if (fresh == TLS_OUT_OF_INDEXES) return fresh;
  const auto before = static_cast<DWORD>(InterlockedCompareExchange(
      &slot, static_cast<LONG>(fresh), static_cast<LONG>(TLS_OUT_OF_INDEXES)));
  if (before == TLS_OUT_OF_INDEXES) return fresh;
  TlsFree(fresh);  // another thread was faster
  return before;
}

}  // namespace

KernelSettings& ThreadSettings() {
  const DWORD index = Slot();
  if (index == TLS_OUT_OF_INDEXES) return fallback;
  if (auto* settings = static_cast<KernelSettings*>(TlsGetValue(index))) return *settings;
  HeapBlock block(sizeof(KernelSettings));
  if (!block) return fallback;
  *block.As<KernelSettings>() = kDefaults;
  if (!TlsSetValue(index, block.Get())) return fallback;
  return *static_cast<KernelSettings*>(block.Detach());
}

void ReleaseThreadSettings() {
  const auto index = static_cast<DWORD>(slot);
  if (index == TLS_OUT_OF_INDEXES) return;
  HeapBlock::Adopt(TlsGetValue(index));
  TlsSetValue(index, nullptr);
}

void ReleaseSettingsSlot() {
  ReleaseThreadSettings();
  const auto index =
      static_cast<DWORD>(InterlockedExchange(&slot, static_cast<LONG>(TLS_OUT_OF_INDEXES)));
  if (index != TLS_OUT_OF_INDEXES) TlsFree(index);
}

}  // namespace quillo::imaging
