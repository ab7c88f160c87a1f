#pragma once

#include "base/ddi.h"

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "host/engine/drawing.h"
#include "host/engine/driver_functions.h"
#include "host/engine/path.h"
#include "host/engine/services/clips.h"
#include "host/engine/services/surfaces.h"
#include "host/engine/text.h"
#include "host/engine/text_layout.h"

namespace quillo::host {

/// Calls of one page by the name of the DDI function.
struct DdiCalls {
  std::map<std::string, uint64_t> made;     // every call
  std::map<std::string, uint64_t> refused;  // calls that answered FALSE and had no fallback left:
                                            // their drawing is not on the page
  std::map<std::string, uint64_t> unmade;   // calls that would take more pictures of the engine's
                                            // making than one page may have: likewise
  std::vector<bool> glyph_texts;            // of each text call that drew: whether its text came as
                                            // glyph indexes
};

/// The drawing engine of one page: what GDI does between an application's call and the driver.
///
/// Everything is in device space. Calls whose drawing lies outside the clip or the surface are
/// dropped, as GDI drops them. Only hooks that the table has and the surface asks for are called;
/// when one answers FALSE, the engine falls back as Windows does.
class Graphics {
 public:
  /// `surface` must have been associated with a device of `driver`, and outlive this object.
  Graphics(const DriverFunctions& driver, const DEVINFO& device_info, Surface& surface);
  ~Graphics();

  void Stroke(const Path& path, const PenDescription& pen, const DrawState& state);
  void Fill(const Path& path, const BrushDescription& brush, FillMode mode, const DrawState& state);
  void StrokeAndFill(const Path& path, const PenDescription& pen, const BrushDescription& brush,
                     FillMode mode, const DrawState& state);
  /// One line. A solid cosmetic pen goes to DrvLineTo first, any other is a path.
  void Line(POINTFIX from, POINTFIX to, const PenDescription& pen, const DrawState& state);
  /// Paints the pixels of `area` that the clip leaves (FillRgn, PaintRgn, InvertRgn, FrameRgn).
  void Paint(const ClipShape& area, const BrushDescription& brush, const DrawState& state);

  /// The blits. `source_origin` and source rectangles are in pixels of the source, rows from the
  /// top; parts outside the source draw nothing. Targets may be mirrored (right < left, bottom <
  /// top) where a source rectangle is given. `rop3` is the operation byte of a ternary code (0xCC:
  /// SRCCOPY); a brush or source that the operation does not use may be null.
  void BitBlt(const RECTL& target, uint8_t rop3, const BrushDescription* brush,
              const BitmapSource* source, POINTL source_origin, const DrawState& state);
  void StretchBlt(const RECTL& target, const BitmapSource& source, const RECTL& source_rect,
                  uint8_t rop3, const BrushDescription* brush, ULONG stretch_mode,
                  const DrawState& state);
  /// Draws a whole picture that is not run-length coded. One with a palette keeps its few bits a
  /// pixel on the page at any size: the copy of an unstretched one would have 24.
  void DrawPicture(const RECTL& target, const BitmapSource& picture);
  /// Two operations on one rectangle: where the mask (1 bit a pixel, as large as the source
  /// rectangle from `mask_origin` on) is set the low byte of `rop4`, elsewhere the high one.
  void MaskBlt(const RECTL& target, uint16_t rop4, const BrushDescription* brush,
               const BitmapSource& source, const RECTL& source_rect, const BitmapSource& mask,
               POINTL mask_origin, const DrawState& state);
  /// Copies a source rectangle into a parallelogram: its top left, top right and bottom left
  /// corner. A mask that is given (1 bit a pixel, as large as the source rectangle from
  /// `mask_origin` on) leaves out the pixels where it is clear.
  void PlgBlt(const std::array<POINTFIX, 3>& target, const BitmapSource& source,
              const RECTL& source_rect, const BitmapSource* mask, POINTL mask_origin,
              ULONG stretch_mode, const DrawState& state);
  /// With AC_SRC_ALPHA the source has 32 bits, the colours multiplied by the alpha.
  void AlphaBlend(const RECTL& target, const BitmapSource& source, const RECTL& source_rect,
                  BLENDFUNCTION blend, const DrawState& state);
  /// Copies all pixels but those of the colour `key` (0x00RRGGBB).
  void TransparentBlt(const RECTL& target, const BitmapSource& source, const RECTL& source_rect,
                      uint32_t key, const DrawState& state);
  /// Vertices in device pixels; `mesh` holds their numbers, two for each rectangle
  /// (GRADIENT_FILL_RECT_H, _V) or three for each triangle (GRADIENT_FILL_TRIANGLE). Meshes with a
  /// number that has no vertex are left out.
  void GradientFill(std::span<const TRIVERTEX> vertices, std::span<const ULONG> mesh, ULONG mode,
                    const DrawState& state);

  /// Draws what is held back: stretches that combine their source with what is there wait for the
  /// next drawing, as a mask and its picture come one after the other and are drawn as one. To be
  /// called when the page is complete.
  void Finish();

  /// Draws a line of text; see text.h. Gives the length of the line in logical units.
  double Text(const TextDescription& text, const DrawState& state);

  /// Size in device pixels.
  SIZEL Size() const;
  const DdiCalls& Calls() const { return calls_; }

 private:
  /// A call of StretchBlt whose operation uses no brush.
  struct HeldStretch {
    BitmapSource source;
    RECTL source_rect;
    RECTL target;
    uint8_t rop3;
    DrawState state;

    /// Whether the other one draws the same place.
    bool SamePlace(const HeldStretch& other) const;
  };

  /// Calls a hook when the table has it and the surface asks for it; FALSE otherwise. A `hook` of 0
  /// needs no asking for.
  template <typename Function, typename... Arguments>
  bool Hook(const char* name, Function function, FLONG hook, Arguments... arguments) {
    if (function == nullptr || (surface_.hooks & hook) != hook) return false;
    Finish();
    ++calls_.made[name];
    return function(arguments...) != 0;
  }
  /// Counts a picture of so many bytes that a call is broken down into. False when the page has had
  /// too many of them: the call `name` then counts as unmade.
  bool MayMake(const char* name, double bytes);
  /// Whether MayMake would let a picture of so many bytes be made.
  bool CanMake(double bytes) const;
  void Hold(HeldStretch stretch);
  void Refused(const char* name) { ++calls_.refused[name]; }
  void CountRealizations(unsigned count);

  /// The part of `bounds` that the clip and the surface can leave, as a rectangle around it.
  RECTL Visible(const RECTL& bounds, const ClipShape& clip);
  /// DrvBitBlt on an area whose pixels all have a source pixel, and a mask pixel where there is
  /// one.
  void RasterOperation(const RECTL& area, ROP4 rop4, const BrushDescription* brush,
                       const BitmapSource* source, POINTL source_origin, const BitmapSource* mask,
                       POINTL mask_origin, const DrawState& state);
  /// RasterOperation with what of a stretched picture falls on `area`.
  void CombineStretched(const BitmapSource& source, const RECTL& source_rect, const RECTL& target,
                        const RECTL& area, uint8_t rop3, const BrushDescription* brush,
                        const DrawState& state);
  /// Lays a picture of 32 bits with alpha over an area.
  void LayOver(const RECTL& area, const BitmapSource& picture, const DrawState& state);
  void CopyStretched(RECTL target, const BitmapSource& source, RECTL source_rect,
                     ULONG stretch_mode, const DrawState& state);
  void Slant(const std::array<PointD, 3>& corners, const BitmapSource& source, const RECTL& rect,
             const BitmapSource* mask, POINTL mask_origin, ULONG stretch_mode,
             const DrawState& state);
  void FillTriangle(const TRIVERTEX (&corners)[3], const DrawState& state);

  /// Fills a quadrangle given in device pixels, whatever the binary operation.
  void FillPolygon(const PointD (&corners)[4], const BrushDescription& brush,
                   const DrawState& state);
  /// `accelerators` are SO_*; an opaque rectangle is painted together with the glyphs.
  void DrawGlyphs(const TextDescription& text, const TextLayout& layout, const GlyphRun& run,
                  FLONG accelerators, const RECTL& cell, const std::optional<RECTL>& opaque,
                  const DrawState& state);

  /// The clip of a call that draws within `bounds`; nothing when no pixel of them is left.
  std::optional<ClipObject> ClipFor(const RECTL& bounds, const ClipShape& clip);
  /// Runs of a path as this driver takes them: with its curves, or flattened.
  std::vector<PathRun> RunsOf(const Path& path) const;

  const DriverFunctions& driver_;
  const FLONG capabilities_;  // GCAPS_*
  Surface& surface_;
  // The last clip cut to the surface, since calls in a row mostly have the same.
  ClipShape last_clip_;
  ClipShape last_clip_on_surface_;
  std::set<std::shared_ptr<const TextFont>> known_fonts_;  // the driver was asked about them
  std::vector<HeldStretch> held_;                          // all of one place
  double made_bytes_ = 0;  // of pictures that calls were broken down into
  DdiCalls calls_;
};

}  // namespace quillo::host
