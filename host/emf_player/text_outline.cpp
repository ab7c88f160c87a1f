#include "host/emf_player/text_outline.h"

#include <cstddef>
#include <vector>

#include "base/bytes.h"

namespace quillo::host::emf {

namespace {

double ToDouble(FIXED number) { return number.value + number.fract / 65536.0; }

/// Maps outlines in font units, y upwards, to the place of a glyph.
class GlyphPen {
 public:
  GlyphPen(Path& path, const XFORML& map, const quillo::host::PointD& origin)
      : path_(path), map_(map), origin_(origin) {}

  void MoveTo(POINTFX point) { path_.MoveTo(X(point), Y(point)); }
  void LineTo(POINTFX point) { path_.LineTo(X(point), Y(point)); }
  void BezierTo(POINTFX a, POINTFX b, POINTFX c) {
    path_.BezierTo(X(a), Y(a), X(b), Y(b), X(c), Y(c));
  }
  void Close() { path_.CloseFigure(); }

 private:
  double X(POINTFX p) const {
    return origin_.x + ToDouble(p.x) * map_.eM11 - ToDouble(p.y) * map_.eM21;
  }
  double Y(POINTFX p) const {
    return origin_.y + ToDouble(p.x) * map_.eM12 - ToDouble(p.y) * map_.eM22;
  }

  Path& path_;
  const XFORML map_;
  const quillo::host::PointD origin_;
};

/// One contour in the format of GGO_BEZIER: lines and cubic curves.
void DrawContour(Bytes contour, GlyphPen& pen) {
  pen.MoveTo(LoadOrZero<POINTFX>(contour, offsetof(TTPOLYGONHEADER, pfxStart)));
  size_t at = sizeof(TTPOLYGONHEADER);
  while (at + offsetof(TTPOLYCURVE, apfx) <= contour.size()) {
    const auto type = LoadOrZero<WORD>(contour, at);
    const auto count = LoadOrZero<WORD>(contour, at + offsetof(TTPOLYCURVE, cpfx));
    at += offsetof(TTPOLYCURVE, apfx);
    const auto point = [&](size_t i) {
      return LoadOrZero<POINTFX>(contour, at + i * sizeof(POINTFX));
    };
    if (type == TT_PRIM_LINE) {
      for (size_t i = 0; i < count; ++i) pen.LineTo(point(i));
    } else {
      for (size_t i = 0; i + 2 < count; i += 3) pen.BezierTo(point(i), point(i + 1), point(i + 2));
    }
    at += count * sizeof(POINTFX);
  }
  pen.Close();
}

}  // namespace

void AddGlyphOutline(Path& path, HDC dc, USHORT glyph, const XFORML& font_to_device,
                     const quillo::host::PointD& origin) {
  GlyphPen pen(path, font_to_device, origin);
  constexpr MAT2 kIdentity = {{0, 1}, {0, 0}, {0, 0}, {0, 1}};
  constexpr UINT kFormat = GGO_BEZIER | GGO_GLYPH_INDEX | GGO_UNHINTED;
  GLYPHMETRICS metrics{};
  const DWORD size = GetGlyphOutlineW(dc, glyph, kFormat, &metrics, 0, nullptr, &kIdentity);
  if (size == 0 || size == GDI_ERROR) return;  // a space
  std::vector<std::byte> outline(size);
  if (GetGlyphOutlineW(dc, glyph, kFormat, &metrics, size, outline.data(), &kIdentity) ==
      GDI_ERROR) {
    return;
  }
  Bytes rest(outline);
  while (rest.size() >= sizeof(TTPOLYGONHEADER)) {
    const auto bytes = LoadOrZero<DWORD>(rest, offsetof(TTPOLYGONHEADER, cb));
    if (bytes < sizeof(TTPOLYGONHEADER) || bytes > rest.size()) return;
    DrawContour(rest.first(bytes), pen);
    rest = rest.subspan(bytes);
  }
}

Path TextOutline(const TextLayout& layout) {
  Path path;
  for (const GlyphRun& run : layout.runs) {
    for (size_t i = run.first; i < run.first + run.count; ++i) {
      if (layout.glyphs[i] == kNoGlyph) continue;
      AddGlyphOutline(path, run.font->Dc(), layout.glyphs[i], run.font_to_device,
                      layout.origins[i]);
    }
  }
  return path;
}

}  // namespace quillo::host::emf
