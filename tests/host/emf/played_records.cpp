#include "host/emf/played_records.h"

#include <iomanip>

#include "host/engine/canvas.h"
#include "support/line.h"

namespace quillo::host::emf {

namespace {

using test::Line;

std::string Show(POINTFIX point) { return Line(point.x / 16.0, ",", point.y / 16.0); }
std::string Show(POINTL point) { return Line(point.x, ",", point.y); }
std::string Show(const RECTL& r) {
  return Line("(", r.left, ",", r.top, ")-(", r.right, ",", r.bottom, ")");
}
/// "2x3x24"
std::string Show(const BitmapSource& bitmap) {
  return Line(bitmap.width, "x", bitmap.height, "x", bitmap.bits_per_pixel);
}
std::string ShowHex(uint32_t rgb) { return Line(std::hex, std::setfill('0'), std::setw(6), rgb); }
std::string Show(COLORREF color) {
  return "#" + ShowHex(RGB(GetBValue(color), GetGValue(color), GetRValue(color)));
}

/// "M1,2 L3,4 B5,6 7,8 9,10 Z"
std::string Show(const Path& path) {
  std::string text;
  for (const Figure& figure : path.Figures()) {
    text += " M" + Show(figure.points[0]);
    size_t next = 1;
    for (const Figure::Verb verb : figure.verbs) {
      const bool line = verb == Figure::Verb::kLine;
      text += line ? " L" : " B";
      for (int i = 0; i < (line ? 1 : 3); ++i) {
        text += (i == 0 ? "" : " ") + Show(figure.points[next++]);
      }
    }
    if (figure.closed) text += " Z";
  }
  return text;
}

std::string Show(const BrushDescription& brush) {
  if (brush.kind == BrushDescription::Kind::kSolid) return Show(brush.color);
  if (brush.kind == BrushDescription::Kind::kHatched) {
    return Line("hatch ", brush.hatch, " ", Show(brush.color), " on ", Show(brush.background));
  }
  std::string text = "pattern " + Show(*brush.pattern);
  for (size_t i = 0; i < brush.pattern->palette.size(); ++i) {
    text += (i == 0 ? " " : "/") + ShowHex(brush.pattern->palette[i]);
  }
  return text;
}

std::string Show(const PenDescription& pen) {
  const double scale = pen.geometric ? pen.world_to_device.eM11 : 1;
  std::string text = (pen.geometric ? "pen " : "thin pen ") + Show(pen.brush);
  if (pen.geometric) {
    text += Line(" width ", pen.width * scale);
    if (pen.join == JOIN_MITER) text += Line(" miter ", pen.miter_limit);
    if (pen.join == JOIN_BEVEL) text += " bevel";
    if (pen.end_cap == ENDCAP_SQUARE) text += " square";
    if (pen.end_cap == ENDCAP_BUTT) text += " butt";
  }
  if (pen.alternate) text += " alternate";
  for (size_t i = 0; i < pen.style.size(); ++i) {
    text += Line(i == 0 ? " dashes " : "/", pen.style[i] * scale);
  }
  return text;
}

const char* Show(FillMode mode) { return mode == FillMode::kWinding ? " winding" : ""; }

/// Writes each drawing call down as a line of text.
class RecordingCanvas : public Canvas {
 public:
  void Stroke(const Path& path, const PenDescription& pen, const DrawState& state) override {
    Log(state, "Stroke", Show(path), " | ", Show(pen));
  }
  void Fill(const Path& path, const BrushDescription& brush, FillMode mode,
            const DrawState& state) override {
    Log(state, "Fill", Show(path), " | ", Show(brush), Show(mode));
  }
  void StrokeAndFill(const Path& path, const PenDescription& pen, const BrushDescription& brush,
                     FillMode mode, const DrawState& state) override {
    Log(state, "StrokeAndFill", Show(path), " | ", Show(pen), " | ", Show(brush), Show(mode));
  }
  void Line(POINTFIX from, POINTFIX to, const PenDescription& pen,
            const DrawState& state) override {
    Log(state, "Line ", Show(from), " ", Show(to), " | ", Show(pen));
  }
  void Paint(const ClipShape& area, const BrushDescription& brush,
             const DrawState& state) override {
    Log(state, area.IsRectangle() ? "Paint " : "Paint inside ", Show(area.Bounds()), " | ",
        Show(brush));
  }
  void BitBlt(const RECTL& target, uint8_t rop3, const BrushDescription* brush,
              const BitmapSource* source, POINTL origin, const DrawState& state) override {
    Log(state, "BitBlt ", Show(target), " rop ", int{rop3},
        brush != nullptr ? " | " + Show(*brush) : "",
        source != nullptr ? " | " + Show(*source) + " from " + Show(origin) : "");
  }
  void StretchBlt(const RECTL& target, const BitmapSource& source, const RECTL& rect, uint8_t rop3,
                  const BrushDescription*, ULONG mode, const DrawState& state) override {
    Log(state, "StretchBlt ", Show(target), " rop ", int{rop3}, " | ", Show(source), " from ",
        Show(rect), " mode ", mode);
  }
  void MaskBlt(const RECTL& target, uint16_t rop4, const BrushDescription*,
               const BitmapSource& source, const RECTL& rect, const BitmapSource& mask,
               POINTL origin, const DrawState& state) override {
    Log(state, "MaskBlt ", Show(target), " rop ", rop4, " | ", Show(source), " from ", Show(rect),
        " | ", Show(mask), " from ", Show(origin));
  }
  void PlgBlt(const std::array<POINTFIX, 3>& target, const BitmapSource& source, const RECTL& rect,
              const BitmapSource* mask, POINTL origin, ULONG, const DrawState& state) override {
    Log(state, "PlgBlt ", Show(target[0]), " ", Show(target[1]), " ", Show(target[2]), " | ",
        Show(source), " from ", Show(rect),
        mask != nullptr ? " | " + Show(*mask) + " from " + Show(origin) : "");
  }
  void AlphaBlend(const RECTL& target, const BitmapSource& source, const RECTL& rect,
                  BLENDFUNCTION blend, const DrawState& state) override {
    Log(state, "AlphaBlend ", Show(target), " alpha ", int{blend.SourceConstantAlpha},
        blend.AlphaFormat == AC_SRC_ALPHA ? " own" : "", " | ", Show(source), " from ", Show(rect));
  }
  void TransparentBlt(const RECTL& target, const BitmapSource& source, const RECTL& rect,
                      uint32_t key, const DrawState& state) override {
    Log(state, "TransparentBlt ", Show(target), " key ", Show(static_cast<COLORREF>(key)), " | ",
        Show(source), " from ", Show(rect));
  }
  void GradientFill(std::span<const TRIVERTEX> vertices, std::span<const ULONG> mesh, ULONG mode,
                    const DrawState& state) override {
    std::string corners;
    for (const ULONG i : mesh) corners += test::Line(" ", vertices[i].x, ",", vertices[i].y);
    Log(state, "GradientFill mode ", mode, corners);
  }
  double Text(const TextDescription& text, const DrawState& state) override {
    std::string call = text.glyph_indexes ? "Text" : "Text '";
    for (const wchar_t unit : text.text) {
      call +=
          text.glyph_indexes ? test::Line(" ", int{unit}) : std::string(1, static_cast<char>(unit));
    }
    call += test::Line(text.glyph_indexes ? " at " : "' at ", text.x, ",", text.y);
    if (text.align != 0) call += test::Line(" align ", text.align);
    const XFORM& m = text.to_device;
    if (m.eM11 != 1 || m.eM12 != 0 || m.eM21 != 0 || m.eM22 != 1) {
      call += test::Line(" by ", m.eM11, ",", m.eM12, ",", m.eM21, ",", m.eM22);
    }
    for (size_t i = 0; i < text.dx.size(); ++i) call += test::Line(i ? "/" : " dx ", text.dx[i]);
    for (size_t i = 0; i < text.dy.size(); ++i) call += test::Line(i ? "/" : " dy ", text.dy[i]);
    if (text.break_extra != 0) call += test::Line(" spaces ", text.break_extra);
    Log(state, call, " | ", Show(text.color),
        text.opaque ? " | on " + Show(text.background) + " " + Show(*text.opaque) : "");
    return 100;
  }
  SIZEL Size() const override { return {1000, 1000}; }

  std::string log;

 private:
  template <typename... Parts>
  void Log(const DrawState& state, const Parts&... parts) {
    log += test::Line(parts...);
    if (state.rop2 != R2_COPYPEN) log += test::Line(" | rop2 ", int{state.rop2});
    if (!state.opaque_background) log += " | transparent";
    const POINTL origin = state.brush_origin;
    if (origin.x != 0 || origin.y != 0) log += " | origin " + Show(origin);
    if (state.clip.Empty()) {
      log += " | no clip left";
    } else if (!state.clip.Unbounded()) {
      log +=
          (state.clip.IsRectangle() ? " | clip " : " | clip inside ") + Show(state.clip.Bounds());
    }
    log += "\n";
  }
};

}  // namespace

Played Play(const std::vector<TestRecord>& records, const Transform& to_page,
            const PlayOptions& options) {
  MetafileBuilder builder;
  for (const auto& [type, payload] : records) builder.Add(type, payload);
  const auto file = builder.Finish();
  MetafileReader reader(file);
  RecordingCanvas canvas;
  Played played;
  played.result = PlayMetafile(reader, to_page, canvas, options);
  played.calls = canvas.log;
  for (const MetafileFault& fault : reader.faults()) played.faults += Describe(fault) + "\n";
  return played;
}

std::string LastCall(const std::vector<TestRecord>& records, const Transform& to_page) {
  std::string calls = Play(records, to_page).calls;
  if (!calls.empty()) calls.pop_back();
  return calls.substr(calls.rfind('\n') + 1);
}

}  // namespace quillo::host::emf
