#include "host/emf/recording_canvas.h"

#include <sstream>
#include <utility>

namespace quillo::host::emf {

namespace {

/// Pixels; whole ones without a fraction.
std::string Text(double value) {
  std::ostringstream text;
  text << value;
  return text.str();
}

std::string Text(POINTFIX point) { return Text(point.x / 16.0) + "," + Text(point.y / 16.0); }

std::string Text(const RECTL& rect) {
  return "(" + std::to_string(rect.left) + "," + std::to_string(rect.top) + ")-(" +
         std::to_string(rect.right) + "," + std::to_string(rect.bottom) + ")";
}

std::string Text(COLORREF color) {
  char text[8];
  snprintf(text, sizeof(text), "#%02x%02x%02x", GetRValue(color), GetGValue(color),
           GetBValue(color));
  return text;
}

/// "M1,2 L3,4 B5,6 7,8 9,10 Z"
std::string Text(const Path& path) {
  std::string text;
  for (const Figure& figure : path.Figures()) {
    text += " M" + Text(figure.points[0]);
    size_t next = 1;
    for (const Figure::Verb verb : figure.verbs) {
      const bool line = verb == Figure::Verb::kLine;
      text += line ? " L" : " B";
      for (int i = 0; i < (line ? 1 : 3); ++i) {
        text += (i == 0 ? "" : " ") + Text(figure.points[next++]);
      }
    }
    if (figure.closed) text += " Z";
  }
  return text;
}

std::string Text(const BrushDescription& brush) {
  switch (brush.kind) {
    case BrushDescription::Kind::kSolid:
      return Text(brush.color);
    case BrushDescription::Kind::kHatched:
      return "hatch " + std::to_string(brush.hatch) + " " + Text(brush.color) + " on " +
             Text(brush.background);
    case BrushDescription::Kind::kPattern:
      break;
  }
  const BitmapSource& bitmap = *brush.pattern;
  return "pattern " + std::to_string(bitmap.width) + "x" + std::to_string(bitmap.height) + "x" +
         std::to_string(bitmap.bits_per_pixel);
}

std::string Text(const PenDescription& pen) {
  std::string text = pen.geometric ? "pen " : "thin pen ";
  text += Text(pen.brush);
  if (pen.geometric) {
    text += " width " + Text(pen.width * pen.world_to_device.eM11);
    if (pen.join == JOIN_MITER) text += " miter " + Text(pen.miter_limit);
    if (pen.join == JOIN_BEVEL) text += " bevel";
    if (pen.end_cap == ENDCAP_SQUARE) text += " square";
    if (pen.end_cap == ENDCAP_BUTT) text += " butt";
  }
  if (pen.alternate) text += " alternate";
  for (size_t i = 0; i < pen.style.size(); ++i) {
    text += (i == 0 ? " dashes " : "/") +
            Text(pen.style[i] * (pen.geometric ? pen.world_to_device.eM11 : 1));
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
                                     Text(state.clip.Bounds());
  }
  log_ += "\n";
}

void RecordingCanvas::Stroke(const Path& path, const PenDescription& pen, const DrawState& state) {
  Log("Stroke" + Text(path) + " | " + Text(pen), state);
}

void RecordingCanvas::Fill(const Path& path, const BrushDescription& brush, FillMode mode,
                           const DrawState& state) {
  Log("Fill" + Text(path) + " | " + Text(brush) + (mode == FillMode::kWinding ? " winding" : ""),
      state);
}

void RecordingCanvas::StrokeAndFill(const Path& path, const PenDescription& pen,
                                    const BrushDescription& brush, FillMode mode,
                                    const DrawState& state) {
  Log("StrokeAndFill" + Text(path) + " | " + Text(pen) + " | " + Text(brush) +
          (mode == FillMode::kWinding ? " winding" : ""),
      state);
}

void RecordingCanvas::Line(POINTFIX from, POINTFIX to, const PenDescription& pen,
                           const DrawState& state) {
  Log("Line " + Text(from) + " " + Text(to) + " | " + Text(pen), state);
}

void RecordingCanvas::Paint(const ClipShape& area, const BrushDescription& brush,
                            const DrawState& state) {
  Log((area.IsRectangle() ? "Paint " : "Paint inside ") + Text(area.Bounds()) + " | " + Text(brush),
      state);
}

void RecordingCanvas::BitBlt(const RECTL& target, uint8_t rop3, const BrushDescription* brush,
                             const BitmapSource* source, POINTL source_origin,
                             const DrawState& state) {
  std::string call = "BitBlt " + Text(target) + " rop " + std::to_string(rop3);
  if (brush != nullptr) call += " | " + Text(*brush);
  if (source != nullptr) {
    call += " | " + std::to_string(source->width) + "x" + std::to_string(source->height) + "x" +
            std::to_string(source->bits_per_pixel) + " from " + std::to_string(source_origin.x) +
            "," + std::to_string(source_origin.y);
  }
  Log(call, state);
}

void RecordingCanvas::StretchBlt(const RECTL& target, const BitmapSource& source,
                                 const RECTL& source_rect, uint8_t rop3,
                                 const BrushDescription* brush, ULONG stretch_mode,
                                 const DrawState& state) {
  std::string call = "StretchBlt " + Text(target) + " rop " + std::to_string(rop3);
  if (brush != nullptr) call += " | " + Text(*brush);
  call += " | " + std::to_string(source.width) + "x" + std::to_string(source.height) + "x" +
          std::to_string(source.bits_per_pixel) + " from " + Text(source_rect) + " mode " +
          std::to_string(stretch_mode);
  Log(call, state);
}

}  // namespace quillo::host::emf
