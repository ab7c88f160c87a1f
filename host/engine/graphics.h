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

#include "host/engine/canvas.h"
#include "host/engine/driver_functions.h"
#include "host/engine/picture_budget.h"
#include "host/engine/services/clips.h"
#include "host/engine/services/surfaces.h"
#include "host/engine/text_layout.h"

namespace quillo::host {

/// Calls of one page by the name of the DDI function.
struct DdiCalls {
  std::map<std::string, uint64_t> made;     // every call
  std::map<std::string, uint64_t> refused;  // calls that returned FALSE and had no fallback left:
                                            // their drawing is not on the page
  std::map<std::string, uint64_t> unmade;   // calls that the page's budget of pictures did not
                                            // allow: likewise
  std::vector<bool> glyph_texts;            // of each successful text call: whether its text was
                                            // glyph indexes
};

/// The drawing engine of one page: what GDI does between an application's call and the driver.
///
/// Like GDI, drops calls whose drawing lies outside the clip or the surface. Calls only hooks that
/// the table has and the surface asks for; when one returns FALSE, falls back as Windows does.
class Graphics : public Canvas {
 public:
  /// `surface` must have been associated with a device of `driver`, and outlive this object.
  Graphics(const DriverFunctions& driver, const DEVINFO& device_info, Surface& surface);
  ~Graphics() override;

  void Stroke(const Path& path, const PenDescription& pen, const DrawState& state) override;
  void Fill(const Path& path, const BrushDescription& brush, FillMode mode,
            const DrawState& state) override;
  void StrokeAndFill(const Path& path, const PenDescription& pen, const BrushDescription& brush,
                     FillMode mode, const DrawState& state) override;
  /// With a solid cosmetic pen it goes to DrvLineTo first, otherwise it is a path.
  void Line(POINTFIX from, POINTFIX to, const PenDescription& pen, const DrawState& state) override;
  void Paint(const ClipShape& area, const BrushDescription& brush, const DrawState& state) override;

  void BitBlt(const RECTL& target, uint8_t rop3, const BrushDescription* brush,
              const BitmapSource* source, POINTL source_origin, const DrawState& state) override;
  void StretchBlt(const RECTL& target, const BitmapSource& source, const RECTL& source_rect,
                  uint8_t rop3, const BrushDescription* brush, ULONG stretch_mode,
                  const DrawState& state) override;
  /// Draws a whole picture that is not run-length coded. A picture with a palette always goes to
  /// DrvStretchBlt, which keeps its depth on the page: DrvCopyBits would store 24 bits a pixel.
  void DrawPicture(const RECTL& target, const BitmapSource& picture);
  void MaskBlt(const RECTL& target, uint16_t rop4, const BrushDescription* brush,
               const BitmapSource& source, const RECTL& source_rect, const BitmapSource& mask,
               POINTL mask_origin, const DrawState& state) override;
  void PlgBlt(const std::array<POINTFIX, 3>& target, const BitmapSource& source,
              const RECTL& source_rect, const BitmapSource* mask, POINTL mask_origin,
              ULONG stretch_mode, const DrawState& state) override;
  void AlphaBlend(const RECTL& target, const BitmapSource& source, const RECTL& source_rect,
                  BLENDFUNCTION blend, const DrawState& state) override;
  void TransparentBlt(const RECTL& target, const BitmapSource& source, const RECTL& source_rect,
                      uint32_t key, const DrawState& state) override;
  void GradientFill(std::span<const TRIVERTEX> vertices, std::span<const ULONG> mesh, ULONG mode,
                    const DrawState& state) override;

  double Text(const TextDescription& text, const DrawState& state) override;

  /// Stretches that combine their source with the page wait for the next drawing, as a mask and its
  /// picture come one after the other and are drawn as one.
  void Finish() override;

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

    /// Whether the other one draws in the same place.
    bool SamePlace(const HeldStretch& other) const;
  };

  /// Calls a hook if the table has it and the surface asks for it (`hook` 0: always). Returns its
  /// result, or false.
  template <typename Function, typename... Arguments>
  bool Hook(const char* name, Function function, FLONG hook, Arguments... arguments) {
    if (function == nullptr || (surface_.hooks & hook) != hook) return false;
    Finish();
    ++calls_.made[name];
    return function(arguments...) != 0;
  }
  /// Counts a picture of so many bytes that the call `name` is broken down into. False, and the
  /// call is unmade, when that exceeds the page's budget.
  bool MayMake(const char* name, double bytes);
  void Hold(HeldStretch stretch);
  void Refused(const char* name) { ++calls_.refused[name]; }
  void CountRealisations(unsigned count);

  /// The part of `bounds` inside the surface and the bounds of the clip.
  RECTL Visible(const RECTL& bounds, const ClipShape& clip);
  /// DrvBitBlt on an area each of whose pixels has a source pixel, and a mask pixel if there is a
  /// mask.
  void RasterOperation(const RECTL& area, ROP4 rop4, const BrushDescription* brush,
                       const BitmapSource* source, POINTL source_origin, const BitmapSource* mask,
                       POINTL mask_origin, const DrawState& state);
  /// RasterOperation with the part of a stretched picture that falls on `area`.
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

  /// Fills a quadrangle of device pixels with R2_COPYPEN.
  void FillPolygon(const Quadrangle& corners, const BrushDescription& brush,
                   const DrawState& state);
  /// `accelerators` are SO_*; an opaque rectangle is painted together with the glyphs.
  void DrawGlyphs(const TextDescription& text, const TextLayout& layout, const GlyphRun& run,
                  FLONG accelerators, const RECTL& cell, const std::optional<RECTL>& opaque,
                  const DrawState& state);

  /// The clip for a call that draws within `bounds`; nothing when it leaves no pixel of them.
  std::optional<ClipObject> ClipFor(const RECTL& bounds, const ClipShape& clip);
  /// The runs of a path: with its curves if this driver accepts them, otherwise flattened.
  std::vector<PathRun> RunsOf(const Path& path) const;

  const DriverFunctions& driver_;
  const FLONG capabilities_;  // GCAPS_*
  Surface& surface_;
  // The last clip, and its part on the surface: successive calls mostly have the same.
  ClipShape last_clip_;
  ClipShape last_clip_on_surface_;
  // The driver has been asked about these. It does not keep them open.
  std::set<std::weak_ptr<const TextFont>, std::owner_less<>> known_fonts_;
  std::vector<HeldStretch> held_;  // all in one place
  PictureBudget budget_;
  DdiCalls calls_;
};

}  // namespace quillo::host
