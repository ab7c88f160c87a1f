#include "base/ddi.h"

#include <cstring>

#include "base/arithmetic.h"
#include "capture/brush.h"
#include "capture/hooks.h"
#include "capture/packed_surface.h"
#include "capture/records/conversions.h"

namespace quillo {
namespace {

struct BrushColours {
  uint32_t foreground = 0;  // device colours
  uint32_t background = 0xFFFFFF;
};

/// A hatch has its colours from the translation vector: background first, then foreground.
/// Vectors of other lengths leave black on white.
BrushColours HatchColours(XLATEOBJ* translation) {
  BrushColours colours;
  const auto vector = TranslationVector(translation);
  if (vector.size() == 1 || vector.size() == 2) colours.background = vector[0];
  if (vector.size() == 2) colours.foreground = vector[1];
  return colours;
}

}  // namespace

BOOL APIENTRY DrvRealizeBrush(BRUSHOBJ* brush, SURFOBJ* target, SURFOBJ* pattern, SURFOBJ*,
                              XLATEOBJ* translation, ULONG hatch) noexcept {
  const DEVICE_PDEV* device = FindDevice(target);
  if (device == nullptr) return FALSE;
  const bool hatched = hatch < kHatchCount;
  const PackedSurface packed(hatched ? nullptr : pattern, translation);
  const auto total_size = CheckedAdd(kRealisedBrushSize, packed.Size());
  if (brush == nullptr || !total_size) return FALSE;
  void* block = BRUSHOBJ_pvAllocRbrush(brush, *total_size);
  if (block == nullptr) return FALSE;
  std::memset(block, 0, *total_size);

  const BrushColours colours = hatched ? HatchColours(translation) : BrushColours{};
  const RealisedBrush realised = {*total_size, records::SwapRedBlue(colours.foreground),
                                  colours.background, packed.Size() != 0 ? packed.Size() : hatch};
  std::memcpy(block, &realised, sizeof realised);
  // A pattern without bits stays zeros.
  packed.Pack(device, {static_cast<std::byte*>(block) + sizeof realised, packed.Size()});
  brush->pvRbrush = block;
  return TRUE;
}

ULONG APIENTRY DrvDitherColor(DHPDEV, ULONG, ULONG, ULONG*) noexcept { return DCR_SOLID; }

}  // namespace quillo
