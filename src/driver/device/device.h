#pragma once

#include "base/ddi.h"

#include <cstdint>

#include "config/device_mode/device_mode.h"
#include "config/papers/sheet.h"

namespace quillo {

struct CQloPrinter;

inline constexpr uint32_t kDeviceSignature = 0x514C4F44;  // the bytes "DOLQ"

enum DeviceFlags : uint32_t {
  /// Set by the first DrvStartDoc. Compatibility: never cleared, so that a device reset after the
  /// end of its document still hands over the document word. Kept for callers.
  kDocumentOpen = 0x01,
  kDrawingRefused = 0x10,    // hooks return FALSE
  kDrawingDiscarded = 0x20,  // hooks return TRUE and record nothing
};

/// Dots per inch.
struct Resolution {
  uint32_t x;
  uint32_t y;
};

/// One enabled device: the engine's DHPDEV. Lives on the process heap from DrvEnablePDEV to
/// DrvDisablePDEV.
struct DEVICE_PDEV {
  uint32_t signature;  // kDeviceSignature
  DeviceMode mode;     // the settings in force
  HINSTANCE module;
  HANDLE printer;  // the spooler's; opens the job
  HANDLE reserved;
  HDEV engine_device;      // from DrvCompletePDEV
  HSURF surface;           // null = none
  HSURF surface_bitmap;    // the same handle as it was created
  uint32_t document_word;  // carried over by DrvResetPDEV
  uint32_t flags;          // DeviceFlags
  uint32_t closing_signature;
  Resolution resolution;       // dots per inch; both axes are equal
  POINTL physical_offset;      // of the printable area on the sheet, device pixels
  HPALETTE palette;            // from EngCreatePalette; null = none
  COLORREF remembered_colour;  // background colour that the next path records
  uint32_t brush_word;         // 0
  CQloPrinter* job;            // null before the first DrvStartDoc
  SIZEL surface_size;          // printable size in device pixels
  uint32_t job_ended;          // 1 from DrvEndDoc to DrvStartDoc: `job` is dangling
  Sheet sheet;                 // of `mode`
};

/// The device's job while it lives, else null.
inline CQloPrinter* LivingJob(const DEVICE_PDEV& device) {
  return device.job_ended != 0 ? nullptr : device.job;
}

/// The record of a handle; null, with last error ERROR_INVALID_PARAMETER, when it is not a living
/// device.
DEVICE_PDEV* FindDevice(DHPDEV handle);

/// The device that a surface belongs to; null, with the same last error, when it has none.
DEVICE_PDEV* FindDevice(const SURFOBJ* surface);

}  // namespace quillo
