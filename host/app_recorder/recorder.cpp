#include <atomic>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <new>
#include <span>
#include <windows.h>

#include "host/app_protocol/app_protocol.h"
#include "host/app_recorder/dc_state.h"
#include "host/app_recorder/host_connection.h"
#include "host/app_recorder/pen_record.h"
#include "host/app_recorder/text_record.h"
#include "host/app_recorder/wine_gdi.h"

// A printer driver for Wine's GDI, in the process of a printing program. It draws nothing: GDI
// records what the program draws, and the print host is handed each page's metafile.
namespace quillo::app {
namespace {

using Bytes = std::span<const std::byte>;

constexpr DWORD kMaxPath = 1024;

/// A DC of memory that is compatible with a printer's: it is drawn on by GDI, and measures like the
/// printer.
struct MemoryDevice {
  PhysicalDevice base;  // GDI knows this part; first
  Capabilities capabilities;
};

/// A printer's DC.
struct Device : MemoryDevice {
  HostConnection connection;
  bool document_open;
  bool page_open;
  bool has_started_page;  // programs of old end pages that they never start
  wchar_t page_file[kMaxPath];
  DcStates states;  // while a page ends; too large for a stack
  size_t mode_bytes;
  std::byte mode[kMaxModeBytes];  // the DEVMODEW that holds
};

MemoryDevice& MemoryOf(PhysicalDevice* base) { return *reinterpret_cast<MemoryDevice*>(base); }

Device& DeviceOf(PhysicalDevice* base) { return static_cast<Device&>(MemoryOf(base)); }

Bytes ModeOf(const Device& device) { return {device.mode, device.mode_bytes}; }

Bytes TextBytes(const wchar_t* text) {
  return text == nullptr ? Bytes() : std::as_bytes(std::span(text, wcslen(text)));
}

/// Takes a program's device mode, and asks for what it makes of the device. Nothing changes where
/// the host refuses.
bool TakeMode(Device& device, const DEVMODEW* mode) {
  Bytes bytes = ModeOf(device);
  if (mode != nullptr) {
    bytes = std::as_bytes(std::span(reinterpret_cast<const std::byte*>(mode),
                                    size_t{mode->dmSize} + mode->dmDriverExtra));
  }
  Capabilities capabilities;
  const Reply reply = Ask({RequestKind::kCapabilities, 0, 0, 0, 0}, bytes, {},
                          std::as_writable_bytes(std::span(&capabilities, 1)));
  if (reply.result <= 0 || reply.bytes != sizeof capabilities) return false;
  device.capabilities = capabilities;
  std::memmove(device.mode, bytes.data(), bytes.size());
  device.mode_bytes = bytes.size();
  return true;
}

// -- Recording ------------------------------------------------------------------------------

/// Lets the DC record a page, which begins with the DC's state.
bool BeginRecording(Device& device) {
  const HDC dc = device.base.dc;
  TakeStates(dc, device.states);
  const RECT frame = {0, 0, device.capabilities.width_millimetres * 100,
                      device.capabilities.height_millimetres * 100};
  const bool started = StartRecording(dc, frame);
  GiveStates(dc, device.states);
  return started;
}

HENHMETAFILE EndRecording(Device& device) {
  if (IsRecordingPath(device.base.dc)) AbortPath(device.base.dc);
  return StopRecording(device.base.dc);
}

bool CopyToFile(HENHMETAFILE metafile, const wchar_t* file) {
  const HENHMETAFILE copy = CopyEnhMetaFileW(metafile, file);
  DeleteEnhMetaFile(copy);
  return copy != nullptr;
}

/// Hands over what has been recorded as a page, and records the next.
bool HandOver(Device& device) {
  const HENHMETAFILE metafile = EndRecording(device);
  const bool copied = metafile != nullptr && CopyToFile(metafile, device.page_file);
  DeleteEnhMetaFile(metafile);
  device.page_open = false;
  const bool recording = BeginRecording(device);
  return copied && recording &&
         Ask({RequestKind::kPage, 0, 0, 0, 0}, ModeOf(device), {}).result > 0;
}

bool CloseDocument(Device& device, RequestKind how) {
  if (!device.document_open) return false;
  device.document_open = device.page_open = false;
  DeleteEnhMetaFile(EndRecording(device));
  return Ask({how, 0, 0, 0, 0}, {}, {}).result > 0;
}

// -- The driver's functions -------------------------------------------------------------------

BOOL OnDeleteDc(PhysicalDevice* base) {
  Device& device = DeviceOf(base);
  // Its recorder is gone already.
  if (device.document_open) Ask({RequestKind::kAbortDocument, 0, 0, 0, 0}, {}, {});
  device.~Device();
  HeapFree(GetProcessHeap(), 0, &device);
  return TRUE;
}

BOOL OnResetDc(PhysicalDevice* base, const DEVMODEW* mode) {
  Device& device = DeviceOf(base);
  if (device.page_open || !TakeMode(device, mode)) return FALSE;
  if (!device.document_open) return TRUE;
  // The page that has begun to be recorded has the old sheet.
  DeleteEnhMetaFile(EndRecording(device));
  return BeginRecording(device);
}

int OnStartDoc(PhysicalDevice* base, const DOCINFOW* document) {
  Device& device = DeviceOf(base);
  if (device.document_open) return SP_ERROR;
  std::memset(device.page_file, 0, sizeof device.page_file);
  const Reply reply = Ask({RequestKind::kStartDocument, 0, 0, 0, 0}, ModeOf(device),
                          TextBytes(document->lpszDocName),
                          std::as_writable_bytes(std::span(device.page_file).first(kMaxPath - 1)));
  if (reply.result <= 0) return SP_ERROR;
  device.document_open = true;
  device.page_open = device.has_started_page = false;
  if (BeginRecording(device)) return reply.result;
  CloseDocument(device, RequestKind::kAbortDocument);
  return SP_OUTOFMEMORY;
}

int OnStartPage(PhysicalDevice* base) {
  Device& device = DeviceOf(base);
  if (!device.document_open || device.page_open) return SP_ERROR;
  device.page_open = device.has_started_page = true;
  return 1;
}

int OnEndPage(PhysicalDevice* base) {
  Device& device = DeviceOf(base);
  if (!device.document_open || device.page_open != device.has_started_page) return SP_ERROR;
  return HandOver(device) ? 1 : SP_ERROR;
}

int OnEndDoc(PhysicalDevice* base) {
  Device& device = DeviceOf(base);
  const bool whole = !device.page_open || HandOver(device);
  return CloseDocument(device, RequestKind::kEndDocument) && whole ? 1 : SP_ERROR;
}

int OnAbortDoc(PhysicalDevice* base) {
  return CloseDocument(DeviceOf(base), RequestKind::kAbortDocument) ? 1 : SP_ERROR;
}

int OnExtEscape(PhysicalDevice* base, int escape, int input_size, const void* input,
                int output_size, void* output) {
  const auto size = [](int given, const void* buffer) {
    return given < 0 || buffer == nullptr ? size_t{0} : static_cast<size_t>(given);
  };
  const std::span out(static_cast<std::byte*>(output), size(output_size, output));
  const auto room = static_cast<uint32_t>(out.size() < kMaxDataBytes ? out.size() : kMaxDataBytes);
  return Ask({RequestKind::kEscape, static_cast<uint32_t>(escape), room, 0, 0},
             ModeOf(DeviceOf(base)),
             {static_cast<const std::byte*>(input), size(input_size, input)}, out)
      .result;
}

int OnGetDeviceCaps(PhysicalDevice* base, int capability) {
  // Everything that GDI's metafiles have a record for.
  constexpr int kRaster = RC_BITBLT | RC_BITMAP64 | RC_GDI20_OUTPUT | RC_DI_BITMAP | RC_DIBTODEV |
                          RC_BIGFONT | RC_STRETCHBLT | RC_STRETCHDIB | RC_OP_DX_OUTPUT;
  constexpr int kCurves = 0x1FF, kLines = 0xFE, kPolygons = 0xFF;
  // With none, programs mix colours themselves, or draw opaquely.
  constexpr int kBlends =
      SB_CONST_ALPHA | SB_PIXEL_ALPHA | SB_PREMULT_ALPHA | SB_GRAD_RECT | SB_GRAD_TRI;
  const Capabilities& known = MemoryOf(base).capabilities;
  switch (capability) {
    case TECHNOLOGY:
      return DT_RASPRINTER;
    case HORZSIZE:
      return known.width_millimetres;
    case VERTSIZE:
      return known.height_millimetres;
    case HORZRES:
    case DESKTOPHORZRES:
      return known.width;
    case VERTRES:
    case DESKTOPVERTRES:
      return known.height;
    case BITSPIXEL:
      return known.bits_per_pixel;
    case PLANES:
      return known.planes;
    case NUMCOLORS:
      return known.colours;
    case CURVECAPS:
      return kCurves;
    case LINECAPS:
      return kLines;
    case POLYGONALCAPS:
      return kPolygons;
    case TEXTCAPS:
      return known.text_capabilities;
    case CLIPCAPS:
      return CP_RECTANGLE;
    case RASTERCAPS:
      return kRaster;
    case ASPECTX:
      return known.aspect_x;
    case ASPECTY:
      return known.aspect_y;
    case ASPECTXY:
      return known.aspect_xy;
    case LOGPIXELSX:
      return known.dpi_x;
    case LOGPIXELSY:
      return known.dpi_y;
    case PHYSICALWIDTH:
      return known.sheet_width;
    case PHYSICALHEIGHT:
      return known.sheet_height;
    case PHYSICALOFFSETX:
      return known.left;
    case PHYSICALOFFSETY:
      return known.top;
    case SHADEBLENDCAPS:
      return kBlends;
    default:
      return NextDeviceCaps(base, capability);
  }
}

BOOL OnExtTextOut(PhysicalDevice* base, int /*x*/, int /*y*/, UINT /*options*/,
                  const RECT* /*rectangle*/, const wchar_t* /*text*/, UINT count,
                  const INT* advances) {
  MendTextRecord(base->dc, count, reinterpret_cast<const POINT*>(advances));
  return TRUE;
}

HPEN OnSelectPen(PhysicalDevice* base, HPEN pen, const void* /*pattern*/) {
  MendPenRecord(base->dc, pen);
  return pen;
}

int OnSetDibitsToDevice(PhysicalDevice* /*base*/, int /*x*/, int /*y*/, DWORD /*width*/,
                        DWORD height) {
  return static_cast<int>(height);
}

int OnStretchDibits(PhysicalDevice* /*base*/, int /*x*/, int /*y*/, int /*width*/, int /*height*/,
                    int /*source_x*/, int /*source_y*/, int /*source_width*/, int source_height) {
  return source_height;
}

DWORD OnImage() { return ERROR_SUCCESS; }

/// Stands for all drawing: it is recorded.
BOOL OnDraw() { return TRUE; }

BOOL OnCreateDc(PhysicalDevice** stack, const wchar_t* printer, const wchar_t* port,
                const DEVMODEW* mode);
BOOL OnCreateCompatibleDc(PhysicalDevice* base, PhysicalDevice** stack);

BOOL OnDeleteMemoryDc(PhysicalDevice* base) {
  return HeapFree(GetProcessHeap(), 0, &MemoryOf(base));
}

const DriverTable g_table = [] {
  DriverTable made = {};
  const auto put = [&made](DriverFunction place, auto* function) {
    made.functions[place] = reinterpret_cast<const void*>(function);
  };
  put(kCreateCompatibleDc, OnCreateCompatibleDc);
  put(kCreateDc, OnCreateDc);
  put(kDeleteDc, OnDeleteDc);
  put(kResetDc, OnResetDc);
  put(kStartDoc, OnStartDoc);
  put(kStartPage, OnStartPage);
  put(kEndPage, OnEndPage);
  put(kEndDoc, OnEndDoc);
  put(kAbortDoc, OnAbortDoc);
  put(kExtEscape, OnExtEscape);
  put(kGetDeviceCaps, OnGetDeviceCaps);
  put(kExtTextOut, OnExtTextOut);
  put(kSelectPen, OnSelectPen);
  put(kSetDibitsToDevice, OnSetDibitsToDevice);
  put(kStretchDibits, OnStretchDibits);
  put(kPutImage, OnImage);
  put(kBlendImage, OnImage);
  for (const DriverFunction drawing :
       {kAlphaBlend, kEllipse, kExtFloodFill, kFillRgn, kFrameRgn, kGradientFill, kInvertRgn,
        kLineTo, kPaintRgn, kPatBlt, kPie, kPolyPolygon, kPolyPolyline, kRectangle, kRoundRect,
        kStretchBlt}) {
    put(drawing, OnDraw);
  }
  made.priority = kPrinterPriority;
  return made;
}();

const DriverTable g_memory_table = [] {
  DriverTable made = {};
  made.functions[kCreateCompatibleDc] = g_table.functions[kCreateCompatibleDc];
  made.functions[kGetDeviceCaps] = g_table.functions[kGetDeviceCaps];
  made.functions[kDeleteDc] = reinterpret_cast<const void*>(OnDeleteMemoryDc);
  made.priority = kPrinterPriority;
  return made;
}();

BOOL OnCreateDc(PhysicalDevice** stack, const wchar_t* /*printer*/, const wchar_t* /*port*/,
                const DEVMODEW* mode) {
  void* memory = HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, sizeof(Device));
  if (memory == nullptr) return FALSE;
  auto* device = new (memory) Device;
  if (!TakeMode(*device, mode)) {
    device->~Device();
    HeapFree(GetProcessHeap(), 0, memory);
    return FALSE;
  }
  PushDevice(stack, &device->base, &g_table);
  return TRUE;
}

BOOL OnCreateCompatibleDc(PhysicalDevice* base, PhysicalDevice** stack) {
  auto* device = static_cast<MemoryDevice*>(
      HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, sizeof(MemoryDevice)));
  if (device == nullptr) return FALSE;
  device->capabilities = MemoryOf(base).capabilities;
  PushDevice(stack, &device->base, &g_memory_table);
  return TRUE;
}

/// The driver that makes printer DCs without this one.
const void* WinesOwnDriver(unsigned version) {
  wchar_t file[MAX_PATH] = {};
  constexpr wchar_t kFile[] = L"\\spool\\drivers\\x64\\3\\wineps.drv";
  const UINT length = GetSystemDirectoryW(file, MAX_PATH);
  if (length == 0 || length + std::size(kFile) > MAX_PATH) return nullptr;
  wcscpy(file + length, kFile);
  const HMODULE module = LoadLibraryW(file);  // kept: its functions are in use
  if (module == nullptr) return nullptr;
  using Function = const void*(unsigned);
  auto* function = reinterpret_cast<Function*>(
      reinterpret_cast<void*>(GetProcAddress(module, "wine_get_gdi_driver")));
  return function == nullptr ? nullptr : function(version);
}

bool IsKnownWine(unsigned version) {
  static std::atomic<bool> known = false;  // it is asked for each DC
  if (version == kDriverVersion && !known) known = LayoutsFit();
  return version == kDriverVersion && known;
}

/// Tells the host why nothing can be recorded.
void ReportOtherWine() {
  using Function = const char*();
  auto* function = reinterpret_cast<Function*>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version")));
  const char* version = function == nullptr ? "" : function();
  const HostConnection connection;
  Ask({RequestKind::kOtherWine, 0, 0, 0, 0}, {},
      std::as_bytes(std::span(version, strlen(version))));
}

}  // namespace
}  // namespace quillo::app

/// What Wine's GDI calls for each new DC of a printer with this driver. Null: no DC is made.
extern "C" const void* wine_get_gdi_driver(unsigned version) {
  using namespace quillo::app;
  if (!HasHost()) return WinesOwnDriver(version);
  if (IsKnownWine(version)) return &g_table;
  ReportOtherWine();
  return nullptr;
}
