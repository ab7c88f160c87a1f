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
  /// The arguments of DrvRealizeBrush when the driver first asks for its realisation. The objects
  /// must outlive the brush; `realise` null: the driver realises no brushes.
  struct Pattern {
    PFN_DrvRealizeBrush realise = nullptr;
    SURFOBJ* target = nullptr;
    SURFOBJ* pattern = nullptr;
    SURFOBJ* mask = nullptr;
    XLATEOBJ* xlate = nullptr;
    ULONG hatch = HS_DDI_MAX;  // HS_*; HS_DDI_MAX for pattern brushes
  };

  /// A solid brush of a device colour.
  explicit BrushObject(ULONG device_colour);
  /// A brush that is realised on demand.
  explicit BrushObject(const Pattern& pattern);
  BrushObject(const BrushObject&) = delete;
  BrushObject& operator=(const BrushObject&) = delete;

  /// Zeroed memory for the driver's realisation; replaces the previous one.
  void* Allocate(ULONG bytes);
  /// The driver's realisation, made at the first call; null when that fails.
  void* Realisation();
  /// How often `realise` has been called.
  unsigned Realisations() const { return realisations_; }

 private:
  Pattern pattern_;
  std::vector<std::byte> realisation_;
  unsigned realisations_ = 0;
};

}  // namespace quillo::host
