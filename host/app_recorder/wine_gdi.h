#pragma once

#include <cstddef>
#include <span>
#include <windows.h>

// The inside of one version of Wine's GDI: how a printer's DC reaches its driver, and GDI's own
// recorder of metafiles, which any DC can carry. Nothing outside this file and wine_gdi.cpp knows a
// layout.
namespace quillo::app {

/// The device that a driver has in the stack of devices of a DC.
struct PhysicalDevice {
  const struct DriverTable* functions;
  PhysicalDevice* next;
  HDC dc;
};

/// Places of a driver's functions. Those that are null are looked for further down the stack.
enum DriverFunction : size_t {
  kAbortDoc = 0,
  kAlphaBlend = 2,
  kBlendImage = 7,
  kCreateCompatibleDc = 10,
  kCreateDc,
  kDeleteDc,
  kEllipse = 14,
  kEndDoc,
  kEndPage,
  kExtEscape = 19,
  kExtFloodFill,
  kExtTextOut,
  kFillRgn = 23,
  kFrameRgn = 25,
  kGetDeviceCaps = 31,
  kGradientFill = 50,
  kInvertRgn,
  kLineTo,
  kPaintRgn = 54,
  kPatBlt,
  kPie,
  kPolyPolygon = 60,
  kPolyPolyline,
  kPutImage = 63,
  kRectangle = 66,
  kResetDc,
  kRoundRect,
  kSelectPen = 72,
  kSetDibitsToDevice = 77,
  kSetPixel = 80,
  kStartDoc = 82,
  kStartPage,
  kStretchBlt,
  kStretchDibits,
  kDriverFunctions = 94,
};
inline constexpr unsigned kDriverVersion = 81;
inline constexpr UINT kPrinterPriority = 200;  // above fonts, below paths

struct DriverTable {
  const void* functions[kDriverFunctions];
  UINT priority;
};

/// Puts `device` on top of a new DC's stack.
void PushDevice(PhysicalDevice** stack, PhysicalDevice* device, const DriverTable* functions);

/// What GetDeviceCaps answers without this device.
int NextDeviceCaps(PhysicalDevice* device, int capability);

/// Whether this process's GDI is laid out as these declarations have it: tried out on a metafile
/// DC, without reading memory that is not there.
bool LayoutsFit();

/// Lets the DC, which has no recorder, record from now on; `frame` is the page's, in 0.01 mm.
bool StartRecording(HDC dc, const RECT& frame);
/// Ends the recording. The DC has no recorder then. Null when there is no metafile.
HENHMETAFILE StopRecording(HDC dc);

/// Whether the DC records a path that is still open.
bool IsRecordingPath(HDC dc);

/// The last `size` bytes that the DC has recorded; nothing when it has not recorded as many.
std::span<std::byte> LastRecords(HDC dc, size_t size);
/// Puts as many other records in the place of the last `old_size` bytes. False when memory is
/// short.
bool ReplaceLastRecords(HDC dc, size_t old_size, std::span<const std::byte> records);

}  // namespace quillo::app
