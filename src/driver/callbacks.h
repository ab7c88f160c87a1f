#pragma once

#include "base/ddi.h"

// The device, surface, document and page callbacks of the driver's table, by their interface names.
// (The drawing hooks are in capture/hooks.h.) Without a living device they fail with last error
// ERROR_INVALID_PARAMETER. A refused page leaves the system's last error or ERROR_CAN_NOT_COMPLETE;
// other failures set none.
namespace quillo {

DHPDEV APIENTRY DrvEnablePDEV(DEVMODEW* mode, LPWSTR log_address, ULONG pattern_count,
                              HSURF* patterns, ULONG caps_size, ULONG* caps, ULONG dev_info_size,
                              DEVINFO* dev_info, HDEV engine_device, LPWSTR device_name,
                              HANDLE printer) noexcept;
BOOL APIENTRY DrvResetPDEV(DHPDEV old_handle, DHPDEV new_handle) noexcept;
VOID APIENTRY DrvCompletePDEV(DHPDEV handle, HDEV engine_device) noexcept;
VOID APIENTRY DrvDisablePDEV(DHPDEV handle) noexcept;

HSURF APIENTRY DrvEnableSurface(DHPDEV handle) noexcept;
VOID APIENTRY DrvDisableSurface(DHPDEV handle) noexcept;

BOOL APIENTRY DrvStartDoc(SURFOBJ* surface, LPWSTR document, DWORD job_id) noexcept;
BOOL APIENTRY DrvStartPage(SURFOBJ* surface) noexcept;
BOOL APIENTRY DrvSendPage(SURFOBJ* surface) noexcept;
BOOL APIENTRY DrvEndDoc(SURFOBJ* surface, FLONG flags) noexcept;

ULONG APIENTRY DrvEscape(SURFOBJ* surface, ULONG escape, ULONG input_size, PVOID input,
                         ULONG output_size, PVOID output) noexcept;

}  // namespace quillo
