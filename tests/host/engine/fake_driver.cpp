#include "tests/host/engine/fake_driver.h"

#include <cmath>
#include <iomanip>
#include <span>

#include "host/engine/services/brushes.h"
#include "host/engine/services/surfaces.h"
#include "support/line.h"

namespace quillo::host {
namespace {

using test::Line;

FakeDriver* fake = nullptr;

struct Device {
  int number;  // 1, 2, ... in the order of enabling
  HDEV engine_device;
  HSURF surface;
};

/// Notes a call; false when the driver is to refuse it.
template <typename... Details>
bool Note(const std::string& name, const Details&... details) {
  const std::string text = Line("", details...);
  fake->calls.push_back(text.empty() ? name : name + " " + text);
  if (name == fake->refusing) SetLastError(ERROR_GEN_FAILURE);
  return name != fake->refusing;
}

std::string Hex(ULONG number) { return Line(std::hex, number); }

std::string Colours(const XLATEOBJ* translation) {
  std::string text;
  for (const ULONG colour : std::span(translation->pulXlate, translation->cEntries)) {
    text += " " + Hex(colour);
  }
  return text;
}

int NumberOf(DHPDEV device) { return reinterpret_cast<Device*>(device)->number; }
int NumberOf(SURFOBJ* surface) { return NumberOf(surface->dhpdev); }

std::string Describe(const POINTL& p) { return Line(p.x, ",", p.y); }

std::string Describe(const RECTL& r) {
  return Line(r.left, ",", r.top, ",", r.right, ",", r.bottom);
}

std::string Describe(PATHOBJ* path) {
  std::string text;
  PATHDATA data{};
  PATHOBJ_vEnumStart(path);
  for (bool more = true; more;) {
    more = PATHOBJ_bEnum(path, &data) != FALSE;
    text += " [" + Hex(data.flags) + ":";
    for (const POINTFIX& p : std::span(data.pptfx, data.count)) {
      text += Line(" ", p.x / 16.0, ",", p.y / 16.0);
    }
    text += "]";
  }
  return text;
}

// Defaults are omitted: a clip of the whole page, R2_COPYPEN for both mixes, an origin of 0.

std::string Describe(CLIPOBJ* clip) {
  if (clip->iDComplexity == DC_TRIVIAL) return "";
  if (clip->iDComplexity == DC_RECT) {
    const std::string bounds = Describe(clip->rclBounds);
    return bounds == Line("0,0,", fake->size.cx, ",", fake->size.cy) ? "" : ", clip " + bounds;
  }
  PATHOBJ* outline = CLIPOBJ_ppoGetPath(clip);
  std::string text = ", clip inside " + Describe(clip->rclBounds) + Describe(outline);
  EngDeletePath(outline);
  return text;
}

std::string DescribeOrigin(const POINTL* origin) {
  return origin->x == 0 && origin->y == 0 ? "" : ", origin " + Describe(*origin);
}

std::string Describe(MIX mix, CLIPOBJ* clip, const POINTL* origin = nullptr) {
  std::string text;
  if ((mix & 0xFF) != R2_COPYPEN) text += Line(", mix ", mix & 0xFF);
  if (mix >> 8 != (mix & 0xFF)) text += Line(", background mix ", mix >> 8);
  return text + (origin != nullptr ? DescribeOrigin(origin) : "") + Describe(clip);
}

std::string Describe(BRUSHOBJ* brush) {
  if (brush->iSolidColor != kNotSolid) return "solid " + Hex(brush->iSolidColor);
  return static_cast<const char*>(BRUSHOBJ_pvGetRbrush(brush));
}

/// A pen, thin or wide; joins and caps unless they are round.
std::string Describe(const LINEATTRS& line, XFORMOBJ* transform, BRUSHOBJ* brush) {
  const bool wide = (line.fl & LA_GEOMETRIC) != 0;
  XFORML matrix{};
  XFORMOBJ_iGetXform(transform, &matrix);
  std::string text = wide ? Line("wide ", line.elWidth.e, "x", matrix.eM11) : "thin";
  for (const FLOAT_LONG& dash : std::span(line.pstyle, line.cstyle)) {
    text += wide ? Line("/", dash.e) : Line("/", dash.l);
  }
  if (line.fl & LA_ALTERNATE) text += " alternate";
  if (line.iJoin == JOIN_BEVEL) text += " bevel";
  if (line.iJoin == JOIN_MITER) text += Line(" miter ", line.eMiterLimit);
  if (line.iEndCap == ENDCAP_SQUARE) text += " square";
  if (line.iEndCap == ENDCAP_BUTT) text += " butt";
  return text + " " + Describe(brush);
}

DHPDEV APIENTRY EnablePDEV(DEVMODEW* mode, LPWSTR, ULONG, HSURF*, ULONG, GDIINFO* capabilities,
                           ULONG, DEVINFO* info, HDEV, LPWSTR, HANDLE) {
  static int count = 0;
  if (fake->calls.empty()) count = 0;
  if (!Note("EnablePDEV", mode->dmPaperSize)) return nullptr;
  info->flGraphicsCaps = fake->graphics_caps;
  capabilities->ulHorzRes = static_cast<ULONG>(fake->size.cx);
  return reinterpret_cast<DHPDEV>(new Device{++count, nullptr, nullptr});
}

void APIENTRY CompletePDEV(DHPDEV device, HDEV engine_device) {
  Note("CompletePDEV", NumberOf(device));
  reinterpret_cast<Device*>(device)->engine_device = engine_device;
}

WINBOOL APIENTRY ResetPDEV(DHPDEV from, DHPDEV to) {
  return Note("ResetPDEV", NumberOf(from), " ", NumberOf(to));
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
  return Note("StartDoc", NumberOf(surface), name == nullptr ? " - " : " name ", job);
}

WINBOOL APIENTRY StartPage(SURFOBJ* surface) { return Note("StartPage", NumberOf(surface)); }

WINBOOL APIENTRY SendPage(SURFOBJ* surface) { return Note("SendPage", NumberOf(surface)); }

WINBOOL APIENTRY EndDoc(SURFOBJ* surface, FLONG flags) {
  return Note("EndDoc", NumberOf(surface), flags & ED_ABORTDOC ? " abort" : "");
}

ULONG APIENTRY Escape(SURFOBJ*, ULONG, ULONG, void*, ULONG, void*) { return 0; }

WINBOOL APIENTRY RealizeBrush(BRUSHOBJ* brush, SURFOBJ*, SURFOBJ* pattern, SURFOBJ*,
                              XLATEOBJ* xlate, ULONG hatch) {
  if (!Note("RealizeBrush")) return FALSE;
  const std::string text = Line("hatch ", hatch, " ", pattern->sizlBitmap.cx, "x",
                                pattern->sizlBitmap.cy, Colours(xlate));
  void* block = BRUSHOBJ_pvAllocRbrush(brush, static_cast<ULONG>(text.size() + 1));
  brush->pvRbrush =
      std::char_traits<char>::copy(static_cast<char*>(block), text.c_str(), text.size());
  return TRUE;
}

WINBOOL APIENTRY StrokePath(SURFOBJ*, PATHOBJ* path, CLIPOBJ* clip, XFORMOBJ* transform,
                            BRUSHOBJ* brush, POINTL* origin, LINEATTRS* line, MIX mix) {
  return Note("StrokePath", Describe(*line, transform, brush), ",", Describe(path),
              Describe(mix, clip, origin));
}

WINBOOL APIENTRY FillPath(SURFOBJ*, PATHOBJ* path, CLIPOBJ* clip, BRUSHOBJ* brush, POINTL* origin,
                          MIX mix, FLONG mode) {
  return Note("FillPath", Describe(brush), mode == FP_WINDINGMODE ? " winding" : "", ",",
              Describe(path), Describe(mix, clip, origin));
}

WINBOOL APIENTRY StrokeAndFillPath(SURFOBJ*, PATHOBJ* path, CLIPOBJ* clip, XFORMOBJ* transform,
                                   BRUSHOBJ* stroke, LINEATTRS* line, BRUSHOBJ* fill,
                                   POINTL* origin, MIX mix, FLONG mode) {
  return Note("StrokeAndFillPath", Describe(*line, transform, stroke), ", ", Describe(fill),
              mode == FP_WINDINGMODE ? " winding" : "", ",", Describe(path),
              Describe(mix, clip, origin));
}

WINBOOL APIENTRY LineTo(SURFOBJ*, CLIPOBJ* clip, BRUSHOBJ* brush, LONG x1, LONG y1, LONG x2,
                        LONG y2, RECTL*, MIX mix) {
  return Note("LineTo", Describe(brush), ", ", Describe(RECTL{x1, y1, x2, y2}),
              Describe(mix, clip));
}

WINBOOL APIENTRY Paint(SURFOBJ*, CLIPOBJ* clip, BRUSHOBJ* brush, POINTL* origin, MIX mix) {
  return Note("Paint", Describe(brush), Describe(mix, clip, origin));
}

/// Size, depth and, of small pictures, all pixels as the driver would copy them.
std::string Describe(SURFOBJ* surface, XLATEOBJ* translation) {
  const auto [width, height] = surface->sizlBitmap;
  const ULONG depth = BitsPerPixel(surface->iBitmapFormat);
  std::string text = Line(width, "x", height, "x", depth);
  if (surface->iBitmapFormat > BMF_32BPP) return text + " rle";
  if (translation != nullptr && translation->cEntries > 0 && translation->cEntries <= 4) {
    text += " {" + Colours(translation) + " }";
  }
  if (surface->cjBits > 64) return text;
  for (LONG y = 0; y < height; ++y) {
    const auto* row = static_cast<const uint8_t*>(surface->pvScan0) + y * surface->lDelta;
    text += y == 0 ? " " : "/";
    for (const uint8_t byte : std::span(row, (static_cast<ULONG>(width) * depth + 7) / 8)) {
      text += Line(std::hex, std::setfill('0'), std::setw(2), int{byte});
    }
  }
  return text;
}

WINBOOL APIENTRY BitBlt(SURFOBJ*, SURFOBJ* source, SURFOBJ* mask, CLIPOBJ* clip,
                        XLATEOBJ* translation, RECTL* target, POINTL* source_origin,
                        POINTL* mask_origin, BRUSHOBJ* brush, POINTL* brush_origin, ROP4 rop4) {
  std::string text = Describe(*target) + " rop " + Hex(rop4);
  if (brush != nullptr) text += ", " + Describe(brush) + DescribeOrigin(brush_origin);
  if (source != nullptr) {
    text += ", from " + Describe(*source_origin) + " of " + Describe(source, translation);
  }
  if (mask != nullptr) {
    text += ", mask " + Describe(*mask_origin) + " of " + Describe(mask, nullptr);
  }
  return Note("BitBlt", text + Describe(clip));
}

WINBOOL APIENTRY CopyBits(SURFOBJ*, SURFOBJ* source, CLIPOBJ* clip, XLATEOBJ* translation,
                          RECTL* target, POINTL* origin) {
  return Note("CopyBits", Describe(*target), " from ", Describe(*origin), " of ",
              Describe(source, translation), Describe(clip));
}

WINBOOL APIENTRY StretchBlt(SURFOBJ*, SURFOBJ* source, SURFOBJ*, CLIPOBJ* clip,
                            XLATEOBJ* translation, COLORADJUSTMENT*, POINTL*, RECTL* target,
                            RECTL* rect, POINTL*, ULONG mode) {
  return Note("StretchBlt", Describe(*target), " from ", Describe(*rect), " of ",
              Describe(source, translation), ", mode ", mode, Describe(clip));
}

WINBOOL APIENTRY AlphaBlend(SURFOBJ*, SURFOBJ* source, CLIPOBJ* clip, XLATEOBJ* translation,
                            RECTL* target, RECTL* rect, BLENDOBJ* blend) {
  const BLENDFUNCTION& how = blend->BlendFunction;
  return Note("AlphaBlend", Describe(*target), " from ", Describe(*rect), " of ",
              Describe(source, translation), ", ", int{how.SourceConstantAlpha}, "/",
              int{how.AlphaFormat}, Describe(clip));
}

ULONG APIENTRY GetGlyphMode(DHPDEV, FONTOBJ*) { return Note("GetGlyphMode") ? FO_GLYPHBITS : 0; }

WINBOOL APIENTRY TextOut(SURFOBJ*, STROBJ* string, FONTOBJ* font, CLIPOBJ* clip, RECTL*,
                         RECTL* opaque, BRUSHOBJ* ink, BRUSHOBJ*, POINTL*, MIX) {
  std::string text;
  for (const wchar_t unit : std::wstring(string->pwszOrg, string->cGlyphs)) {
    text += unit < 128 ? std::string(1, static_cast<char>(unit)) : "\\" + Hex(unit);
  }
  text += " accel " + Hex(string->flAccel) + ", " + Describe(ink);
  if (opaque != nullptr) text += ", opaque " + Describe(*opaque);
  ULONG count = 0;
  GLYPHPOS* glyphs = nullptr;
  STROBJ_vEnumStart(string);
  for (bool more = true; more;) {
    more = STROBJ_bEnum(string, &count, &glyphs) == TRUE;
    text += ", at";
    for (ULONG i = 0; i < count && i < 4; ++i) text += " " + Describe(glyphs[i].ptl);
  }
  XFORML m{};
  XFORMOBJ_iGetXform(FONTOBJ_pxoGetXform(font), &m);
  const double em = FONTOBJ_pifi(font)->fwdUnitsPerEm;
  text += ", em";
  for (const FLOATL scale : {m.eM11, m.eM12, m.eM21, m.eM22}) {
    text += Line(" ", std::lround(scale * em));
  }
  return Note("TextOut", text + Describe(clip));
}

}  // namespace

FakeDriver::FakeDriver() {
  fake = this;
#define QUILLO_TAKE(name, required) functions.name = name;
  QUILLO_DDI_FUNCTIONS(QUILLO_TAKE)
#undef QUILLO_TAKE
}

FakeDriver::~FakeDriver() { fake = nullptr; }

}  // namespace quillo::host
