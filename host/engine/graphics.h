#pragma once

#include "base/ddi.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "host/engine/canvas.h"
#include "host/engine/driver_functions.h"

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
  Graphics(const DriverFunctions& driver, const DEVINFO& device_info, SURFOBJ& surface);

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
  DdiCalls calls_;
};

}  // namespace quillo::host
