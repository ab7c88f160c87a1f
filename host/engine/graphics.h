#pragma once

#include "base/ddi.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "host/engine/drawing.h"
#include "host/engine/driver_functions.h"
#include "host/engine/path.h"

namespace quillo::host {

/// Calls of one page by the name of the DDI function.
struct DdiCalls {
  std::map<std::string, uint64_t> made;     // every call
  std::map<std::string, uint64_t> refused;  // calls that answered FALSE and had no fallback left:
                                            // their drawing is not on the page
};

/// The drawing engine of one page: what GDI does between an application's call and the driver.
///
/// Everything is in device space. Calls whose drawing lies outside the clip or the surface are
/// dropped, as GDI drops them. Only hooks that the table has and the surface asks for are called;
/// when one answers FALSE, the engine falls back as Windows does.
class Graphics {
 public:
  /// `surface` must have been associated with a device of `driver`, and outlive this object.
  Graphics(const DriverFunctions& driver, const DEVINFO& device_info, SURFOBJ& surface);

  void Stroke(const Path& path, const PenDescription& pen, const DrawState& state);
  void Fill(const Path& path, const BrushDescription& brush, FillMode mode, const DrawState& state);
  void StrokeAndFill(const Path& path, const PenDescription& pen, const BrushDescription& brush,
                     FillMode mode, const DrawState& state);
  /// One line. A solid cosmetic pen goes to DrvLineTo first, any other is a path.
  void Line(POINTFIX from, POINTFIX to, const PenDescription& pen, const DrawState& state);
  /// Paints the pixels of `area` that the clip leaves (FillRgn, PaintRgn, InvertRgn, FrameRgn).
  void Paint(const ClipShape& area, const BrushDescription& brush, const DrawState& state);

  /// The blits. `source_origin` and source rectangles are in pixels of the source, rows from the
  /// top. Targets may be mirrored (right < left, bottom < top) where a source rectangle is given.
  /// `rop3` is the operation byte of a ternary code (0xCC: SRCCOPY); a brush or source that the
  /// operation does not use may be null.
  void BitBlt(const RECTL& target, uint8_t rop3, const BrushDescription* brush,
              const BitmapSource* source, POINTL source_origin, const DrawState& state);
  void StretchBlt(const RECTL& target, const BitmapSource& source, const RECTL& source_rect,
                  uint8_t rop3, const BrushDescription* brush, ULONG stretch_mode,
                  const DrawState& state);

  /// Size of the surface in device pixels.
  SIZEL Size() const;
  const DdiCalls& Calls() const { return calls_; }

 private:
  DdiCalls calls_;
};

}  // namespace quillo::host
