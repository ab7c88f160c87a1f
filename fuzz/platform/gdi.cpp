// GDI as playback needs it. Every call reads all that it is given, so that the sanitizer sees calls
// with too little; what is drawn goes nowhere.
#include "platform/gdi.h"

#include <cstdlib>
#include <set>
#include <utility>

#include "base/bytes.h"
#include "base/dib.h"
#include "platform/memory.h"

namespace {

struct Object {
  WORD kind = 0;                             // OBJ_*
  SharedBytes bits{};                        // of a DIB section
  HGDIOBJ selected[OBJ_ENHMETADC + 1] = {};  // of a DC, by kind
};
std::set<Object*> objects;
Object stock[OBJ_ENHMETADC + 1];

template <typename Handle>
Handle Make(WORD kind) {
  auto* object = new Object{kind};
  objects.insert(object);
  return reinterpret_cast<Handle>(object);
}
Object* Find(HGDIOBJ handle) {
  auto* object = static_cast<Object*>(handle);
  return objects.contains(object) ? object : nullptr;
}
BOOL Delete(HGDIOBJ handle) {
  Object* object = Find(handle);
  if (object == nullptr) return FALSE;
  objects.erase(object);
  delete object;
  return TRUE;
}

void Read(const void* block, size_t size) {
  const auto* bytes = static_cast<const volatile char*>(block);
  for (size_t at = 0; at < size; at += at + 64 < size || at + 1 == size ? 64 : size - 1 - at) {
    (void)bytes[at];
  }
}
template <typename T>
void Read(const T* items, size_t count) {
  Read(static_cast<const void*>(items), count * sizeof(T));
}
/// The bits of a DIB, which start at `bits`.
void ReadDib(const void* bits, const BITMAPINFO& info) {
  const BITMAPINFOHEADER& header = info.bmiHeader;
  if (header.biBitCount <= 8) Read(info.bmiColors, size_t{1} << header.biBitCount);
  const bool plain = header.biCompression == BI_RGB || header.biCompression == BI_BITFIELDS;
  const auto rows = static_cast<size_t>(std::abs(int64_t{header.biHeight}));
  Read(bits,
       plain ? quillo::DibStride(static_cast<uint64_t>(header.biWidth), header.biBitCount) * rows
             : header.biSizeImage);
}

}  // namespace

bool NoObjectsLeft() { return objects.empty(); }

extern "C" {

#define DC_CALL(name) \
  BOOL WINAPI name(HDC) { return TRUE; }
DC_CALL(BeginPath)
DC_CALL(EndPath)
DC_CALL(StrokePath)
DC_CALL(FillPath)
DC_CALL(StrokeAndFillPath)
DC_CALL(CloseFigure)
#undef DC_CALL
#define VALUE_CALL(type, name, argument) \
  type WINAPI name(HDC, argument) { return 1; }
VALUE_CALL(COLORREF, SetBkColor, COLORREF)
VALUE_CALL(COLORREF, SetTextColor, COLORREF)
VALUE_CALL(INT, SetBkMode, INT)
VALUE_CALL(INT, SetPolyFillMode, INT)
VALUE_CALL(INT, SetROP2, INT)
VALUE_CALL(INT, SetStretchBltMode, INT)
VALUE_CALL(INT, SetGraphicsMode, INT)
VALUE_CALL(UINT, SetTextAlign, UINT)
VALUE_CALL(BOOL, RestoreDC, INT)
VALUE_CALL(BOOL, SelectClipPath, INT)
#undef VALUE_CALL
#define POINTS_CALL(name, count)                                 \
  BOOL WINAPI name(HDC, const POINT* points, count size) {       \
    Read(points, static_cast<size_t>(static_cast<DWORD>(size))); \
    return TRUE;                                                 \
  }
POINTS_CALL(PolyBezier, DWORD)
POINTS_CALL(PolyBezierTo, DWORD)
POINTS_CALL(Polyline, INT)
POINTS_CALL(PolylineTo, DWORD)
#undef POINTS_CALL

INT WINAPI SaveDC(HDC) { return 1; }
BOOL WINAPI Ellipse(HDC, INT, INT, INT, INT) { return TRUE; }
BOOL WINAPI Rectangle(HDC, INT, INT, INT, INT) { return TRUE; }
BOOL WINAPI MoveToEx(HDC, INT, INT, POINT*) { return TRUE; }
BOOL WINAPI LineTo(HDC, INT, INT) { return TRUE; }
BOOL WINAPI SetBrushOrgEx(HDC, INT, INT, POINT*) { return TRUE; }
BOOL WINAPI SetMiterLimit(HDC, FLOAT, FLOAT*) { return TRUE; }
BOOL WINAPI SetWorldTransform(HDC, const XFORM* map) { return Read(map, 1), TRUE; }
BOOL WINAPI ModifyWorldTransform(HDC, const XFORM*, DWORD) { return TRUE; }
BOOL WINAPI SetColorAdjustment(HDC, const COLORADJUSTMENT* colours) {
  return Read(colours, 1), TRUE;
}
INT WINAPI FillRect(HDC, const RECT* rect, HBRUSH) { return Read(rect, 1), 1; }
BOOL WINAPI ExtTextOutW(HDC, INT, INT, UINT, const RECT* rect, LPCWSTR text, UINT count,
                        const INT* advances) {
  Read(rect, 1);
  Read(text, count);
  if (advances != nullptr) Read(advances, count);
  return TRUE;
}

BOOL WINAPI BitBlt(HDC, INT, INT, INT, INT, HDC, INT, INT, DWORD) { return TRUE; }
BOOL WINAPI PatBlt(HDC, INT, INT, INT, INT, DWORD) { return TRUE; }
BOOL WINAPI StretchBlt(HDC, INT, INT, INT, INT, HDC, INT, INT, INT, INT, DWORD) { return TRUE; }
BOOL WINAPI MaskBlt(HDC, INT, INT, INT, INT, HDC, INT, INT, HBITMAP, INT, INT, DWORD) {
  return TRUE;
}
BOOL WINAPI AlphaBlend(HDC, INT, INT, INT, INT, HDC, INT, INT, INT, INT, BLENDFUNCTION) {
  return TRUE;
}
INT WINAPI SetDIBitsToDevice(HDC, INT, INT, DWORD, DWORD, INT, INT, UINT, UINT, LPCVOID bits,
                             const BITMAPINFO* info, UINT) {
  return ReadDib(bits, *info), 1;
}

HDC WINAPI GetDC(HWND) { return Make<HDC>(OBJ_DC); }
INT WINAPI ReleaseDC(HWND, HDC dc) { return Delete(dc); }
HDC WINAPI CreateCompatibleDC(HDC) { return Make<HDC>(OBJ_MEMDC); }
BOOL WINAPI DeleteDC(HDC dc) { return Delete(dc); }
BOOL WINAPI DeleteObject(HGDIOBJ object) { return Delete(object); }
HGDIOBJ WINAPI SelectObject(HDC dc, HGDIOBJ object) {
  Object* into = Find(dc);
  auto* chosen = static_cast<Object*>(object);
  if (into == nullptr || chosen == nullptr) return nullptr;
  HGDIOBJ& place = into->selected[chosen->kind];
  Object& first = stock[chosen->kind];
  first.kind = chosen->kind;
  HGDIOBJ before = std::exchange(place, object);
  return before != nullptr ? before : &first;
}
HBITMAP WINAPI CreateBitmap(INT, INT, UINT, UINT, LPCVOID) { return Make<HBITMAP>(OBJ_BITMAP); }
HBITMAP WINAPI CreateDIBitmap(HDC, const BITMAPINFOHEADER* header, DWORD, LPCVOID bits,
                              const BITMAPINFO* info, UINT) {
  Read(header, 1);
  ReadDib(bits, *info);
  return Make<HBITMAP>(OBJ_BITMAP);
}
HBITMAP WINAPI CreateDIBSection(HDC, const BITMAPINFO* info, UINT, void** bits, HANDLE section,
                                DWORD offset) {
  const auto bitmap = Make<HBITMAP>(OBJ_BITMAP);
  Object* object = Find(bitmap);
  object->bits = BytesOfSection(section);
  *bits = object->bits->data() + offset;
  ReadDib(*bits, *info);
  return bitmap;
}
HBRUSH WINAPI CreateBrushIndirect(const LOGBRUSH* brush) {
  Read(brush, 1);
  if (brush->lbStyle == BS_DIBPATTERNPT) {
    const auto* info = reinterpret_cast<const BITMAPINFO*>(brush->lbHatch);
    Read(info, 1);
  }
  return Make<HBRUSH>(OBJ_BRUSH);
}
HPEN WINAPI CreatePenIndirect(const LOGPEN* pen) { return Read(pen, 1), Make<HPEN>(OBJ_PEN); }
HPEN WINAPI ExtCreatePen(DWORD, DWORD, const LOGBRUSH* brush, DWORD count, const DWORD* style) {
  Read(brush, 1);
  Read(style, count);
  return Make<HPEN>(OBJ_EXTPEN);
}
HFONT WINAPI CreateFontIndirectW(const LOGFONTW* font) {
  return Read(font, 1), Make<HFONT>(OBJ_FONT);
}
HPALETTE WINAPI CreatePalette(const LOGPALETTE* palette) {
  Read(palette->palPalEntry, palette->palNumEntries);
  return Make<HPALETTE>(OBJ_PAL);
}
HPALETTE WINAPI SelectPalette(HDC dc, HPALETTE palette, BOOL) {
  return static_cast<HPALETTE>(SelectObject(dc, palette));
}
UINT WINAPI RealizePalette(HDC) { return 0; }

INT WINAPI GetDeviceCaps(HDC, INT what) {
  return what == TECHNOLOGY ? DT_RASPRINTER : what == BITSPIXEL ? 24 : what == PLANES ? 1 : 100;
}
DWORD WINAPI GetFontData(HDC, DWORD, DWORD, void*, DWORD) { return GDI_ERROR; }
INT WINAPI GetTextFaceW(HDC, INT, LPWSTR) { return 0; }
BOOL WINAPI GetTextMetricsW(HDC, TEXTMETRICW*) { return FALSE; }

}  // extern "C"
