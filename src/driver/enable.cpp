#include <algorithm>
#include <cstring>

#include "base/module_instance.h"
#include "base/system_owners.h"
#include "config/merge/device_mode_merge.h"
#include "config/papers/paper_geometry.h"
#include "driver/callbacks.h"
#include "driver/capabilities.h"
#include "driver/device/device.h"

namespace quillo {

namespace {

DHPDEV HandleOf(DEVICE_PDEV* device) { return reinterpret_cast<DHPDEV>(device); }

/// Copies as much of `answer` as both sides hold.
template <typename Answer>
void CopyAnswer(const Answer& answer, void* out, ULONG out_size) {
  if (out != nullptr) std::memcpy(out, &answer, std::min<size_t>(out_size, sizeof answer));
}

}  // namespace

DHPDEV APIENTRY DrvEnablePDEV(DEVMODEW* mode, LPWSTR /*log_address*/, ULONG pattern_count,
                              HSURF* patterns, ULONG caps_size, ULONG* caps, ULONG dev_info_size,
                              DEVINFO* dev_info, HDEV /*engine_device*/, LPWSTR device_name,
                              HANDLE printer) noexcept {
  HeapBlock record(sizeof(DEVICE_PDEV));
  if (!record) return nullptr;
  DEVICE_PDEV& device = *record.As<DEVICE_PDEV>();

  device.printer = printer;
  device.remembered_colour = RGB(0xFF, 0xFF, 0xFF);
  device.module = g_module_instance;
  if (device.module == nullptr) return nullptr;

  device.signature = kDeviceSignature;
  device.closing_signature = kDeviceSignature;
  BuildDefaultDeviceMode(device.mode, device_name);
  MergeDeviceMode(device.mode, mode);
  UseInchMargins(device.mode);
  device.sheet = ResolveSheet(device.mode);
  device.physical_offset = {device.sheet.pixels.margins.left, device.sheet.pixels.margins.top};
  const auto dpi = static_cast<uint32_t>(ResolutionOf(device.mode.pub));
  device.resolution = {dpi, dpi};

  CopyAnswer(DescribeGraphics(device), caps, caps_size);

  device.palette = EngCreatePalette(PAL_BGR, 0, nullptr, 0, 0, 0);
  if (device.palette == nullptr) return nullptr;
  CopyAnswer(DescribeDevice(device), dev_info, dev_info_size);

  // The driver offers no standard patterns.
  if (patterns != nullptr) std::fill_n(patterns, pattern_count, nullptr);
  return HandleOf(static_cast<DEVICE_PDEV*>(record.Detach()));
}

BOOL APIENTRY DrvResetPDEV(DHPDEV old_handle, DHPDEV new_handle) noexcept {
  const DEVICE_PDEV* old_device = FindDevice(old_handle);
  DEVICE_PDEV* new_device = FindDevice(new_handle);
  if (old_device == nullptr || new_device == nullptr) return FALSE;
  if ((old_device->flags & kDocumentOpen) == 0) return TRUE;
  new_device->document_word = old_device->document_word;
  new_device->job = old_device->job;
  new_device->job_ended = old_device->job_ended;
  new_device->flags |= kDocumentOpen;
  return TRUE;
}

VOID APIENTRY DrvCompletePDEV(DHPDEV handle, HDEV engine_device) noexcept {
  DEVICE_PDEV* device = FindDevice(handle);
  if (device != nullptr) device->engine_device = engine_device;
}

VOID APIENTRY DrvDisablePDEV(DHPDEV handle) noexcept {
  DEVICE_PDEV* device = FindDevice(handle);
  if (device == nullptr) return;
  if (device->palette != nullptr) EngDeletePalette(device->palette);
  // A handle that outlives its device must not be found again.
  device->signature = 0;
  device->closing_signature = 0;
  HeapFree(GetProcessHeap(), 0, device);
}

}  // namespace quillo
