#pragma once

#include "base/ddi.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/engine/canvas.h"
#include "host/engine/driver_functions.h"
#include "host/engine/services/clips.h"
#include "host/engine/services/surfaces.h"

namespace quillo::host {

/// Calls of one page by the name of the DDI function.
struct DdiCalls {
  std::map<std::string, uint64_t> made;     // every call
  std::map<std::string, uint64_t> refused;  // calls that answered FALSE and had no fallback left:
                                            // their drawing is not on the page
};

/// The drawing engine of one page: what GDI does between an application's call and the driver.
///
/// Only hooks that the table has and the surface asks for are called; when one answers FALSE, the
/// engine falls back as Windows does.
class Graphics : public Canvas {
 public:
  /// `surface` must have been associated with a device of `driver`, and outlive this object.
  Graphics(const DriverFunctions& driver, const DEVINFO& device_info, Surface& surface);

  void Stroke(const Path& path, const PenDescription& pen, const DrawState& state) override;
  void Fill(const Path& path, const BrushDescription& brush, FillMode mode,
            const DrawState& state) override;
  void StrokeAndFill(const Path& path, const PenDescription& pen, const BrushDescription& brush,
                     FillMode mode, const DrawState& state) override;
  void Line(POINTFIX from, POINTFIX to, const PenDescription& pen, const DrawState& state) override;
  void Paint(const ClipShape& area, const BrushDescription& brush, const DrawState& state) override;
  void BitBlt(const RECTL& target, uint8_t rop3, const BrushDescription* brush,
              const BitmapSource* source, POINTL source_origin, const DrawState& state) override;
  void StretchBlt(const RECTL& target, const BitmapSource& source, const RECTL& source_rect,
                  uint8_t rop3, const BrushDescription* brush, ULONG stretch_mode,
                  const DrawState& state) override;
  SIZEL Size() const override;

  const DdiCalls& Calls() const { return calls_; }

 private:
  /// Calls a hook when the table has it and the surface asks for it; FALSE otherwise. A `hook` of 0
  /// needs no asking for.
  template <typename Function, typename... Arguments>
  bool Hook(const char* name, Function function, FLONG hook, Arguments... arguments) {
    if (function == nullptr || (surface_.hooks & hook) != hook) return false;
    ++calls_.made[name];
    return function(arguments...) != 0;
  }
  void Refused(const char* name) { ++calls_.refused[name]; }
  void CountRealizations(unsigned count);

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
  DdiCalls calls_;
};

}  // namespace quillo::host
