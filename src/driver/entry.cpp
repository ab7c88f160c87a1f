#include "base/ddi.h"

#include <cstddef>

#include "base/module_instance.h"
#include "capture/hooks.h"
#include "driver/callbacks.h"

// The four exports, and the table through which the engine reaches everything else.
namespace quillo {
namespace {

template <typename Function>
PFN AsPfn(Function* function) {
  // Through the generic function type, which compilers cast without a warning.
  return reinterpret_cast<PFN>(reinterpret_cast<void (*)()>(function));
}

// The order is part of the interface.
const DRVFN kDriverFunctions[] = {
    {INDEX_DrvEnablePDEV, AsPfn(DrvEnablePDEV)},
    {INDEX_DrvResetPDEV, AsPfn(DrvResetPDEV)},
    {INDEX_DrvCompletePDEV, AsPfn(DrvCompletePDEV)},
    {INDEX_DrvDisablePDEV, AsPfn(DrvDisablePDEV)},
    {INDEX_DrvEnableSurface, AsPfn(DrvEnableSurface)},
    {INDEX_DrvDisableSurface, AsPfn(DrvDisableSurface)},
    {INDEX_DrvSendPage, AsPfn(DrvSendPage)},
    {INDEX_DrvStartPage, AsPfn(DrvStartPage)},
    {INDEX_DrvStartDoc, AsPfn(DrvStartDoc)},
    {INDEX_DrvEndDoc, AsPfn(DrvEndDoc)},
    {INDEX_DrvEscape, AsPfn(DrvEscape)},
    {INDEX_DrvRealizeBrush, AsPfn(DrvRealizeBrush)},
    {INDEX_DrvBitBlt, AsPfn(DrvBitBlt)},
    {INDEX_DrvStretchBlt, AsPfn(DrvStretchBlt)},
    {INDEX_DrvCopyBits, AsPfn(DrvCopyBits)},
    {INDEX_DrvDitherColor, AsPfn(DrvDitherColor)},
    {INDEX_DrvPaint, AsPfn(DrvPaint)},
    {INDEX_DrvFillPath, AsPfn(DrvFillPath)},
    {INDEX_DrvStrokePath, AsPfn(DrvStrokePath)},
    {INDEX_DrvStrokeAndFillPath, AsPfn(DrvStrokeAndFillPath)},
    {INDEX_DrvLineTo, AsPfn(DrvLineTo)},
    {INDEX_DrvAlphaBlend, AsPfn(DrvAlphaBlend)},
    {INDEX_DrvTextOut, AsPfn(DrvTextOut)},
    {INDEX_DrvGetGlyphMode, AsPfn(DrvGetGlyphMode)},
};
constexpr ULONG kDriverFunctionCount = sizeof kDriverFunctions / sizeof kDriverFunctions[0];
static_assert(kDriverFunctionCount == 24);

}  // namespace
}  // namespace quillo

extern "C" {

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) quillo::g_module_instance = instance;
  return TRUE;
}

/// Fills as much of `data` as `size` bytes hold. Always TRUE, whatever the engine's version.
BOOL APIENTRY DrvEnableDriver(ULONG /*engine_version*/, ULONG size, DRVENABLEDATA* data) {
  if (size >= sizeof(DRVENABLEDATA)) {
    data->pdrvfn = const_cast<DRVFN*>(quillo::kDriverFunctions);
  }
  if (size >= offsetof(DRVENABLEDATA, pdrvfn)) data->c = quillo::kDriverFunctionCount;
  if (size >= offsetof(DRVENABLEDATA, c)) data->iDriverVersion = DDI_DRIVER_VERSION_NT5_01;
  return TRUE;
}

VOID APIENTRY DrvDisableDriver() {}

BOOL APIENTRY DrvQueryDriverInfo(DWORD mode, PVOID buffer, DWORD size, PDWORD needed) {
  if (mode != DRVQUERY_USERMODE) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  if (needed != nullptr) *needed = sizeof(DWORD);
  if (buffer == nullptr || size < sizeof(DWORD)) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return FALSE;
  }
  *static_cast<DWORD*>(buffer) = TRUE;
  return TRUE;
}

}  // extern "C"
