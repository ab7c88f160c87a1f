#include "host/emf/recording_canvas.h"

#include <sstream>
#include <utility>

namespace quillo::host::emf {

namespace {

/// Pixels; whole ones without a fraction.
std::string Show(double value) {
  std::ostringstream text;
  text << value;
  return text.str();
}

std::string Show(POINTFIX point) { return Show(point.x / 16.0) + "," + Show(point.y / 16.0); }

std::string Show(const RECTL& rect) {
  return "(" + std::to_string(rect.left) + "," + std::to_string(rect.top) + ")-(" +
         std::to_string(rect.right) + "," + std::to_string(rect.bottom) + ")";
}

std::string Show(POINTL point) { return std::to_string(point.x) + "," + std::to_string(point.y); }

/// "2x3x24"
std::string Show(const BitmapSource& bitmap) {
  return std::to_string(bitmap.width) + "x" + std::to_string(bitmap.height) + "x" +
         std::to_string(bitmap.bits_per_pixel);
}

std::string Show(COLORREF color) {
  char text[8];
  snprintf(text, sizeof(text), "#%02x%02x%02x", GetRValue(color), GetGValue(color),
           GetBValue(color));
  return text;
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
  switch (brush.kind) {
    case BrushDescription::Kind::kSolid:
      return Show(brush.color);
    case BrushDescription::Kind::kHatched:
      return "hatch " + std::to_string(brush.hatch) + " " + Show(brush.color) + " on " +
             Show(brush.background);
    case BrushDescription::Kind::kPattern:
      break;
  }
  std::string text = "pattern " + Show(*brush.pattern);
  for (size_t i = 0; i < brush.pattern->palette.size(); ++i) {
    char color[8];
    snprintf(color, sizeof(color), "%06x", static_cast<unsigned>(brush.pattern->palette[i]));
    text += (i == 0 ? " " : "/") + std::string(color);
  }
  return text;
}

std::string Show(const PenDescription& pen) {
  std::string text = pen.geometric ? "pen " : "thin pen ";
  text += Show(pen.brush);
  if (pen.geometric) {
    text += " width " + Show(pen.width * pen.world_to_device.eM11);
    if (pen.join == JOIN_MITER) text += " miter " + Show(pen.miter_limit);
    if (pen.join == JOIN_BEVEL) text += " bevel";
    if (pen.end_cap == ENDCAP_SQUARE) text += " square";
    if (pen.end_cap == ENDCAP_BUTT) text += " butt";
  }
  if (pen.alternate) text += " alternate";
  for (size_t i = 0; i < pen.style.size(); ++i) {
    text += (i == 0 ? " dashes " : "/") +
            Show(pen.style[i] * (pen.geometric ? pen.world_to_device.eM11 : 1));
  }
  return text;
}

}  // namespace

std::string RecordingCanvas::Take() { return std::exchange(log_, {}); }

void RecordingCanvas::Log(std::string call, const DrawState& state) {
  log_ += call;
  if (state.rop2 != R2_COPYPEN) log_ += " | rop2 " + std::to_string(state.rop2);
  if (!state.opaque_background) log_ += " | transparent";
  if (state.brush_origin.x != 0 || state.brush_origin.y != 0) {
    log_ += " | origin " + std::to_string(state.brush_origin.x) + "," +
            std::to_string(state.brush_origin.y);
  }
  if (!state.clip.Unbounded()) {
    log_ += state.clip.Empty() ? std::string(" | no clip left")
                               : (state.clip.IsRectangle() ? " | clip " : " | clip inside ") +
                                     Show(state.clip.Bounds());
  }
  log_ += "\n";
}

void RecordingCanvas::Stroke(const Path& path, const PenDescription& pen, const DrawState& state) {
  Log("Stroke" + Show(path) + " | " + Show(pen), state);
}

void RecordingCanvas::Fill(const Path& path, const BrushDescription& brush, FillMode mode,
                           const DrawState& state) {
  Log("Fill" + Show(path) + " | " + Show(brush) + (mode == FillMode::kWinding ? " winding" : ""),
      state);
}

void RecordingCanvas::StrokeAndFill(const Path& path, const PenDescription& pen,
                                    const BrushDescription& brush, FillMode mode,
                                    const DrawState& state) {
  Log("StrokeAndFill" + Show(path) + " | " + Show(pen) + " | " + Show(brush) +
          (mode == FillMode::kWinding ? " winding" : ""),
      state);
}

void RecordingCanvas::Line(POINTFIX from, POINTFIX to, const PenDescription& pen,
                           const DrawState& state) {
  Log("Line " + Show(from) + " " + Show(to) + " | " + Show(pen), state);
}

void RecordingCanvas::Paint(const ClipShape& area, const BrushDescription& brush,
                            const DrawState& state) {
  Log((area.IsRectangle() ? "Paint " : "Paint inside ") + Show(area.Bounds()) + " | " + Show(brush),
      state);
}

void RecordingCanvas::BitBlt(const RECTL& target, uint8_t rop3, const BrushDescription* brush,
                             const BitmapSource* source, POINTL source_origin,
                             const DrawState& state) {
  std::string call = "BitBlt " + Show(target) + " rop " + std::to_string(rop3);
  if (brush != nullptr) call += " | " + Show(*brush);
  if (source != nullptr) call += " | " + Show(*source) + " from " + Show(source_origin);
  Log(call, state);
}

void RecordingCanvas::StretchBlt(const RECTL& target, const BitmapSource& source,
                                 const RECTL& source_rect, uint8_t rop3, const BrushDescription*,
                                 ULONG stretch_mode, const DrawState& state) {
  Log("StretchBlt " + Show(target) + " rop " + std::to_string(rop3) + " | " + Show(source) +
          " from " + Show(source_rect) + " mode " + std::to_string(stretch_mode),
      state);
}

void RecordingCanvas::MaskBlt(const RECTL& target, uint16_t rop4, const BrushDescription*,
                              const BitmapSource& source, const RECTL& source_rect,
                              const BitmapSource& mask, POINTL mask_origin,
                              const DrawState& state) {
  Log("MaskBlt " + Show(target) + " rop " + std::to_string(rop4) + " | " + Show(source) + " from " +
          Show(source_rect) + " | " + Show(mask) + " from " + Show(mask_origin),
      state);
}

void RecordingCanvas::PlgBlt(const std::array<POINTFIX, 3>& target, const BitmapSource& source,
                             const RECTL& source_rect, const BitmapSource* mask, POINTL mask_origin,
                             ULONG, const DrawState& state) {
  std::string call = "PlgBlt " + Show(target[0]) + " " + Show(target[1]) + " " + Show(target[2]) +
                     " | " + Show(source) + " from " + Show(source_rect);
  if (mask != nullptr) call += " | " + Show(*mask) + " from " + Show(mask_origin);
  Log(call, state);
}

void RecordingCanvas::AlphaBlend(const RECTL& target, const BitmapSource& source,
                                 const RECTL& source_rect, BLENDFUNCTION blend,
                                 const DrawState& state) {
  Log("AlphaBlend " + Show(target) + " alpha " + std::to_string(blend.SourceConstantAlpha) +
          (blend.AlphaFormat == AC_SRC_ALPHA ? " own" : "") + " | " + Show(source) + " from " +
          Show(source_rect),
      state);
}

void RecordingCanvas::TransparentBlt(const RECTL& target, const BitmapSource& source,
                                     const RECTL& source_rect, uint32_t key,
                                     const DrawState& state) {
  Log("TransparentBlt " + Show(target) + " key " + Show(static_cast<COLORREF>(key)) + " | " +
          Show(source) + " from " + Show(source_rect),
      state);
}

void RecordingCanvas::GradientFill(std::span<const TRIVERTEX> vertices, std::span<const ULONG> mesh,
                                   ULONG mode, const DrawState& state) {
  std::string call = "GradientFill mode " + std::to_string(mode);
  for (const ULONG index : mesh) {
    call += " " + std::to_string(vertices[index].x) + "," + std::to_string(vertices[index].y);
  }
  Log(call, state);
}

double RecordingCanvas::Text(const TextDescription& text, const DrawState& state) {
  std::string call = text.glyph_indexes ? "Text" : "Text '";
  for (const wchar_t unit : text.text) {
    call +=
        text.glyph_indexes ? " " + std::to_string(unit) : std::string(1, static_cast<char>(unit));
  }
  call += (text.glyph_indexes ? " at " : "' at ") + Show(text.x) + "," + Show(text.y);
  if (text.align != 0) call += " align " + std::to_string(text.align);
  const XFORM& m = text.to_device;
  if (m.eM11 != 1 || m.eM12 != 0 || m.eM21 != 0 || m.eM22 != 1) {
    call += " by " + Show(m.eM11) + "," + Show(m.eM12) + "," + Show(m.eM21) + "," + Show(m.eM22);
  }
  for (size_t i = 0; i < text.dx.size(); ++i) call += (i == 0 ? " dx " : "/") + Show(text.dx[i]);
  for (size_t i = 0; i < text.dy.size(); ++i) call += (i == 0 ? " dy " : "/") + Show(text.dy[i]);
  if (text.break_extra != 0) call += " spaces " + Show(text.break_extra);
  call += " | " + Show(text.color);
  if (text.opaque) call += " | on " + Show(text.background) + " " + Show(*text.opaque);
  Log(call, state);
  return 100;
}

}  // namespace quillo::host::emf
