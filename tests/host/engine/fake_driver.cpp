#include "tests/host/engine/fake_driver.h"

#include <map>
#include <sstream>

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
}

FakeDriver::~FakeDriver() { fake = nullptr; }

}  // namespace quillo::host
