#include "tests/host/engine/fake_driver.h"

#include <cmath>
#include <iomanip>
#include <sstream>

#include "host/engine/services/surfaces.h"

namespace quillo::host {
namespace {

FakeDriver* fake = nullptr;

struct Device {
  int number;  // 1, 2, ... in the order of enabling
  HDEV engine_device;
  HSURF surface;
};

/// Notes a call; false when the driver is to refuse it.
bool Note(const std::string& name, const std::string& details = "") {
  fake->calls.push_back(details.empty() ? name : name + " " + details);
  if (name == fake->refusing) SetLastError(ERROR_GEN_FAILURE);
  return name != fake->refusing;
}

std::string NumberOf(DHPDEV device) {
  return std::to_string(reinterpret_cast<Device*>(device)->number);
}

std::string NumberOf(SURFOBJ* surface) { return NumberOf(surface->dhpdev); }

std::string Describe(PATHOBJ* path) {
  std::ostringstream text;
  PATHDATA data{};
  PATHOBJ_vEnumStart(path);
  bool more = true;
  while (more) {
    more = PATHOBJ_bEnum(path, &data) != FALSE;
    text << " [" << std::hex << data.flags << std::dec << ":";
    for (ULONG i = 0; i < data.count; ++i) {
      text << " " << data.pptfx[i].x / 16.0 << "," << data.pptfx[i].y / 16.0;
    }
    text << "]";
  }
  return text.str();
}

std::string Describe(CLIPOBJ* clip) {
  std::ostringstream text;
  if (clip->iDComplexity == DC_TRIVIAL) return "trivial";
  text << (clip->iDComplexity == DC_RECT ? "rect " : "complex ") << clip->rclBounds.left << ","
       << clip->rclBounds.top << "," << clip->rclBounds.right << "," << clip->rclBounds.bottom;
  if (clip->iDComplexity == DC_COMPLEX) {
    PATHOBJ* outline = CLIPOBJ_ppoGetPath(clip);
    text << Describe(outline);
    EngDeletePath(outline);
  }
  return text.str();
}

std::string Describe(BRUSHOBJ* brush) {
  std::ostringstream text;
  if (brush->iSolidColor != 0xFFFFFFFF) {
    text << "solid " << std::hex << brush->iSolidColor;
  } else {
    const auto* realized = static_cast<const char*>(BRUSHOBJ_pvGetRbrush(brush));
    text << (realized != nullptr ? realized : "unrealized");
  }
  return text.str();
}

std::string Describe(const LINEATTRS& line, XFORMOBJ* transform) {
  std::ostringstream text;
  if (line.fl & LA_GEOMETRIC) {
    XFORML matrix{};
    XFORMOBJ_iGetXform(transform, &matrix);
    text << "wide " << line.elWidth.e << "x" << matrix.eM11;
    for (ULONG i = 0; i < line.cstyle; ++i) text << "/" << line.pstyle[i].e;
  } else {
    text << "thin " << line.elWidth.l;
    for (ULONG i = 0; i < line.cstyle; ++i) text << "/" << line.pstyle[i].l;
  }
  return text.str();
}

std::string Describe(const RECTL& r) {
  return std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) +
         "," + std::to_string(r.bottom);
}

DHPDEV APIENTRY EnablePDEV(DEVMODEW* mode, LPWSTR, ULONG, HSURF*, ULONG, GDIINFO* capabilities,
                           ULONG, DEVINFO* info, HDEV, LPWSTR, HANDLE) {
  static int count = 0;
  if (fake->calls.empty()) count = 0;
  if (!Note("EnablePDEV", std::to_string(mode->dmPaperSize))) return nullptr;
  info->flGraphicsCaps = fake->graphics_caps;
  capabilities->ulHorzRes = static_cast<ULONG>(fake->size.cx);
  return reinterpret_cast<DHPDEV>(new Device{++count, nullptr, nullptr});
}

void APIENTRY CompletePDEV(DHPDEV device, HDEV engine_device) {
  Note("CompletePDEV", NumberOf(device));
  reinterpret_cast<Device*>(device)->engine_device = engine_device;
}

WINBOOL APIENTRY ResetPDEV(DHPDEV from, DHPDEV to) {
  return Note("ResetPDEV", NumberOf(from) + " " + NumberOf(to));
}

void APIENTRY DisablePDEV(DHPDEV device) {
  Note("DisablePDEV", NumberOf(device));
  delete reinterpret_cast<Device*>(device);
}

HSURF APIENTRY EnableSurface(DHPDEV handle) {
  if (!Note("EnableSurface", NumberOf(handle))) return nullptr;
  auto* device = reinterpret_cast<Device*>(handle);
  device->surface =
      reinterpret_cast<HSURF>(EngCreateBitmap(fake->size, 0, BMF_24BPP, BMF_USERMEM, nullptr));
  EngAssociateSurface(device->surface, device->engine_device, fake->hooks);
  return device->surface;
}

void APIENTRY DisableSurface(DHPDEV handle) {
  Note("DisableSurface", NumberOf(handle));
  EngDeleteSurface(reinterpret_cast<Device*>(handle)->surface);
}

WINBOOL APIENTRY StartDoc(SURFOBJ* surface, LPWSTR name, DWORD job) {
  return Note("StartDoc",
              NumberOf(surface) + (name == nullptr ? " -" : " name") + " " + std::to_string(job));
}

WINBOOL APIENTRY StartPage(SURFOBJ* surface) { return Note("StartPage", NumberOf(surface)); }

WINBOOL APIENTRY SendPage(SURFOBJ* surface) { return Note("SendPage", NumberOf(surface)); }

WINBOOL APIENTRY EndDoc(SURFOBJ* surface, FLONG flags) {
  return Note("EndDoc", NumberOf(surface) + (flags & ED_ABORTDOC ? " abort" : ""));
}

WINBOOL APIENTRY RealizeBrush(BRUSHOBJ* brush, SURFOBJ*, SURFOBJ* pattern, SURFOBJ*,
                              XLATEOBJ* xlate, ULONG hatch) {
  if (!Note("RealizeBrush")) return FALSE;
  std::ostringstream text;
  text << "hatch " << hatch << " " << pattern->sizlBitmap.cx << "x" << pattern->sizlBitmap.cy
       << std::hex;
  for (ULONG i = 0; i < xlate->cEntries; ++i) text << " " << xlate->pulXlate[i];
  void* block = BRUSHOBJ_pvAllocRbrush(brush, static_cast<ULONG>(text.str().size() + 1));
  brush->pvRbrush = std::char_traits<char>::copy(static_cast<char*>(block), text.str().c_str(),
                                                 text.str().size());
  return TRUE;
}

WINBOOL APIENTRY StrokePath(SURFOBJ*, PATHOBJ* path, CLIPOBJ* clip, XFORMOBJ* transform,
                            BRUSHOBJ* brush, POINTL*, LINEATTRS* line, MIX mix) {
  return Note("StrokePath", Describe(*line, transform) + ", " + Describe(brush) + ", mix " +
                                std::to_string(mix & 0xFF) + "," + Describe(path) + ", " +
                                Describe(clip));
}

WINBOOL APIENTRY FillPath(SURFOBJ*, PATHOBJ* path, CLIPOBJ* clip, BRUSHOBJ* brush, POINTL*, MIX mix,
                          FLONG options) {
  return Note("FillPath", Describe(brush) + ", mix " + std::to_string(mix & 0xFF) + ", mode " +
                              std::to_string(options) + "," + Describe(path) + ", " +
                              Describe(clip));
}

WINBOOL APIENTRY StrokeAndFillPath(SURFOBJ*, PATHOBJ*, CLIPOBJ*, XFORMOBJ*, BRUSHOBJ* stroke,
                                   LINEATTRS*, BRUSHOBJ* fill, POINTL*, MIX, FLONG) {
  return Note("StrokeAndFillPath", Describe(stroke) + ", " + Describe(fill));
}

WINBOOL APIENTRY LineTo(SURFOBJ*, CLIPOBJ*, BRUSHOBJ*, LONG x1, LONG y1, LONG x2, LONG y2, RECTL*,
                        MIX) {
  return Note("LineTo", Describe(RECTL{x1, y1, x2, y2}));
}

WINBOOL APIENTRY Paint(SURFOBJ*, CLIPOBJ* clip, BRUSHOBJ* brush, POINTL*, MIX) {
  return Note("Paint", Describe(brush) + ", " + Describe(clip));
}

/// Size, depth and, of small pictures, all pixels as the driver would copy them.
std::string Describe(SURFOBJ* surface, XLATEOBJ* translation) {
  if (surface == nullptr) return "-";
  std::ostringstream text;
  text << surface->sizlBitmap.cx << "x" << surface->sizlBitmap.cy << "x"
       << BitsPerPixel(surface->iBitmapFormat);
  if (surface->iBitmapFormat > BMF_32BPP) return text.str() + " rle";
  text << std::hex << std::setfill('0');
  if (translation != nullptr && translation->cEntries > 0 && translation->cEntries <= 4) {
    text << " {";
    for (ULONG i = 0; i < translation->cEntries; ++i) text << " " << translation->pulXlate[i];
    text << " }";
  }
  const ULONG row_bytes =
      (static_cast<ULONG>(surface->sizlBitmap.cx) * BitsPerPixel(surface->iBitmapFormat) + 7) / 8;
  if (surface->cjBits > 64) return text.str();
  for (LONG y = 0; y < surface->sizlBitmap.cy; ++y) {
    const auto* row = static_cast<const uint8_t*>(surface->pvScan0) + y * surface->lDelta;
    text << (y == 0 ? " " : "/");
    for (ULONG i = 0; i < row_bytes; ++i) text << std::setw(2) << int{row[i]};
  }
  return text.str();
}

std::string Describe(const POINTL& p) { return std::to_string(p.x) + "," + std::to_string(p.y); }

WINBOOL APIENTRY BitBlt(SURFOBJ*, SURFOBJ* source, SURFOBJ* mask, CLIPOBJ*, XLATEOBJ* translation,
                        RECTL* target, POINTL* source_origin, POINTL* mask_origin, BRUSHOBJ* brush,
                        POINTL*, ROP4 rop4) {
  std::ostringstream text;
  text << Describe(*target) << " rop " << std::hex << rop4;
  if (brush != nullptr) text << ", " << Describe(brush);
  if (source != nullptr) {
    text << ", from " << Describe(*source_origin) << " of " << Describe(source, translation);
  }
  if (mask != nullptr) {
    text << ", mask " << Describe(*mask_origin) << " of " << Describe(mask, nullptr);
  }
  return Note("BitBlt", text.str());
}

WINBOOL APIENTRY CopyBits(SURFOBJ*, SURFOBJ* source, CLIPOBJ*, XLATEOBJ* translation, RECTL* target,
                          POINTL* origin) {
  return Note("CopyBits", Describe(*target) + " from " + Describe(*origin) + " of " +
                              Describe(source, translation));
}

WINBOOL APIENTRY StretchBlt(SURFOBJ*, SURFOBJ* source, SURFOBJ*, CLIPOBJ*, XLATEOBJ* translation,
                            COLORADJUSTMENT*, POINTL*, RECTL* target, RECTL* rect, POINTL*,
                            ULONG mode) {
  return Note("StretchBlt", Describe(*target) + " from " + Describe(*rect) + " of " +
                                Describe(source, translation) + ", mode " + std::to_string(mode));
}

WINBOOL APIENTRY AlphaBlend(SURFOBJ*, SURFOBJ* source, CLIPOBJ*, XLATEOBJ* translation,
                            RECTL* target, RECTL* rect, BLENDOBJ* blend) {
  return Note("AlphaBlend", Describe(*target) + " from " + Describe(*rect) + " of " +
                                Describe(source, translation) + ", " +
                                std::to_string(blend->BlendFunction.SourceConstantAlpha) + "/" +
                                std::to_string(blend->BlendFunction.AlphaFormat));
}

WINBOOL APIENTRY TextOutHook(SURFOBJ*, STROBJ* string, FONTOBJ* font, CLIPOBJ*, RECTL*,
                             RECTL* opaque, BRUSHOBJ* ink, BRUSHOBJ*, POINTL*, MIX) {
  std::ostringstream text;
  text << std::string(string->pwszOrg, string->pwszOrg + string->cGlyphs) << " accel " << std::hex
       << string->flAccel << std::dec << ", " << Describe(ink);
  if (opaque != nullptr) text << ", opaque " << Describe(*opaque);
  ULONG count = 0;
  GLYPHPOS* glyphs = nullptr;
  bool more = true;
  for (STROBJ_vEnumStart(string); more;) {
    more = STROBJ_bEnum(string, &count, &glyphs) == TRUE;
    text << ", at";
    for (ULONG i = 0; i < count && i < 4; ++i) text << " " << Describe(glyphs[i].ptl);
  }
  XFORML matrix{};
  XFORMOBJ_iGetXform(FONTOBJ_pxoGetXform(font), &matrix);
  const double em = FONTOBJ_pifi(font)->fwdUnitsPerEm;
  text << ", em " << std::lround(matrix.eM11 * em) << " " << std::lround(matrix.eM12 * em) << " "
       << std::lround(matrix.eM21 * em) << " " << std::lround(matrix.eM22 * em);
  return Note("TextOut", text.str());
}

}  // namespace

FakeDriver::FakeDriver() {
  fake = this;
  functions.EnablePDEV = EnablePDEV;
  functions.CompletePDEV = CompletePDEV;
  functions.ResetPDEV = ResetPDEV;
  functions.DisablePDEV = DisablePDEV;
  functions.EnableSurface = EnableSurface;
  functions.DisableSurface = DisableSurface;
  functions.StartDoc = StartDoc;
  functions.StartPage = StartPage;
  functions.SendPage = SendPage;
  functions.EndDoc = EndDoc;
  functions.RealizeBrush = RealizeBrush;
  functions.StrokePath = StrokePath;
  functions.FillPath = FillPath;
  functions.StrokeAndFillPath = StrokeAndFillPath;
  functions.LineTo = LineTo;
  functions.Paint = Paint;
  functions.BitBlt = BitBlt;
  functions.CopyBits = CopyBits;
  functions.StretchBlt = StretchBlt;
  functions.AlphaBlend = AlphaBlend;
  functions.TextOut = TextOutHook;
}

FakeDriver::~FakeDriver() { fake = nullptr; }

}  // namespace quillo::host
