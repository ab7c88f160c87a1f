#pragma once

#include "base/ddi.h"

#include <string>
#include <vector>

#include "host/engine/canvas.h"

namespace quillo::host::emf {

/// Writes each drawing call down as a line of text. Each line of text is 100 logical units long.
class RecordingCanvas : public Canvas {
 public:
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
  SIZEL Size() const override { return {1000, 1000}; }

  /// All calls, a line each, and forgets them.
  std::string Take();

 private:
  void Log(std::string call, const DrawState& state);

  std::string log_;
};

}  // namespace quillo::host::emf
