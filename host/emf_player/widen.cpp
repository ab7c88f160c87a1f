#include "host/emf_player/widen.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <vector>

#include "base/gdi_owners.h"
#include "host/engine/path_of_dc.h"

namespace quillo::host::emf {

namespace {

// GDI widens paths in whole units; these are sixteenths of a pixel.
constexpr double kUnitsPerPixel = 16;

DWORD Units(double pixels) {
  return static_cast<DWORD>(std::clamp(std::round(pixels * kUnitsPerPixel), 1.0, 1e9));
}

Pen MakePen(const PenDescription& pen) {
  const double scale = pen.geometric ? pen.world_to_device.eM11 : 1;
  DWORD style = PS_GEOMETRIC;
  style |= pen.join == JOIN_BEVEL ? PS_JOIN_BEVEL
                                  : (pen.join == JOIN_MITER ? PS_JOIN_MITER : PS_JOIN_ROUND);
  style |= pen.end_cap == ENDCAP_BUTT
               ? PS_ENDCAP_FLAT
               : (pen.end_cap == ENDCAP_SQUARE ? PS_ENDCAP_SQUARE : PS_ENDCAP_ROUND);
  std::vector<DWORD> dashes;
  for (const float length : pen.style) dashes.push_back(Units(length * scale));
  if (!dashes.empty()) style |= PS_USERSTYLE;
  const LOGBRUSH brush{BS_SOLID, 0, 0};
  return Pen(ExtCreatePen(style, Units(pen.width * scale), &brush,
                          static_cast<DWORD>(dashes.size()),
                          dashes.empty() ? nullptr : dashes.data()));
}

void Draw(HDC dc, const Figure& figure) {
  MoveToEx(dc, figure.points[0].x, figure.points[0].y, nullptr);
  size_t next = 1;
  for (const Figure::Verb verb : figure.verbs) {
    POINT points[3];
    const DWORD count = verb == Figure::Verb::kLine ? 1 : 3;
    for (DWORD i = 0; i < count; ++i, ++next) {
      points[i] = {figure.points[next].x, figure.points[next].y};
    }
    if (count == 1) {
      LineTo(dc, points[0].x, points[0].y);
    } else {
      PolyBezierTo(dc, points, count);
    }
  }
  if (figure.closed) ::CloseFigure(dc);
}

}  // namespace

Path Widened(const Path& path, const PenDescription& pen) {
  const CreatedDc dc(CreateCompatibleDC(nullptr));
  const Pen gdi_pen = MakePen(pen);
  if (!dc || !gdi_pen) throw std::bad_alloc();
  const SelectScope selected(dc.Get(), gdi_pen.Get());
  SetMiterLimit(dc.Get(), pen.miter_limit, nullptr);
  BeginPath(dc.Get());
  for (const Figure& figure : path.Figures()) Draw(dc.Get(), figure);
  EndPath(dc.Get());
  if (!path.Empty() && !WidenPath(dc.Get())) throw std::bad_alloc();
  return PathOf(dc.Get());
}

}  // namespace quillo::host::emf
