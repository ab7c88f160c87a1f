#pragma once

#include "base/ddi.h"

#include <cstddef>
#include <vector>

namespace quillo::host {

/// `iSolidColor` of a brush that is not solid.
inline constexpr ULONG kNotSolid = 0xFFFFFFFF;

/// A brush with the public BRUSHOBJ in front.
class BrushObject : public BRUSHOBJ {
 public:
  /// What DrvRealizeBrush is given when the driver first asks for its own form of the brush. The
  /// objects must outlive the brush; `realize` null: the driver realises no brushes.
  struct Pattern {
    PFN_DrvRealizeBrush realize = nullptr;
    SURFOBJ* target = nullptr;
    SURFOBJ* pattern = nullptr;
    SURFOBJ* mask = nullptr;
    XLATEOBJ* xlate = nullptr;
    ULONG hatch = HS_DDI_MAX;  // HS_*; HS_DDI_MAX for pattern brushes
  };

  /// A solid brush of a device colour.
  explicit BrushObject(ULONG device_color);
  /// A brush that is realised on demand.
  explicit BrushObject(const Pattern& pattern);
  BrushObject(const BrushObject&) = delete;
  BrushObject& operator=(const BrushObject&) = delete;

  /// Memory for the driver's form, zeroed; replaces what was there.
  void* Allocate(ULONG bytes);
  /// The driver's form, made at the first call; null when it cannot be made.
  void* Realization();
  /// Calls of `realize` so far.
  unsigned Realizations() const { return realizations_; }

 private:
  Pattern pattern_;
  std::vector<std::byte> realization_;
  unsigned realizations_ = 0;
};

}  // namespace quillo::host
