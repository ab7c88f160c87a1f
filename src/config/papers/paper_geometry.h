#pragma once

#include <cstdint>

#include "config/device_mode/device_mode.h"
#include "config/papers/paper_units.h"

namespace quillo {

/// A sheet as a device mode names it. Looking up a custom paper reads the registry: who needs a
/// sheet in several units looks it up once.
struct PaperSize {
  Fraction width;
  Fraction height;
  SizeClass unit_class;
};

/// The sheet of a device mode, as LookUpPaperSize below has it.
PaperSize PaperSizeOf(const DeviceMode& mode);

/// The sheet of a device mode: width and height as exact fractions, in landscape exchanged, and
/// their SizeClass. Each output may be null. A paper number that nobody knows gives Letter.
void LookUpPaperSize(const DeviceMode& mode, Fraction* width, Fraction* height,
                     uint32_t* unit_class);

/// Converts a size of a SizeClass into a PaperUnit, at the resolution of `mode`. Returns 1, or 0
/// with `out` untouched when a pointer is null (`mode` may be null unless pixels are asked for).
/// An unknown class or unit gives an extent of 0 by 0.
int ConvertPaperSize(const DeviceMode* mode, const Fraction* width, const Fraction* height,
                     uint32_t source_class, uint32_t target_unit, Extent* out);

/// The margins of a device mode. Stores 1 (inches) as the unit of its margins. A null `out` or an
/// unknown unit gets nothing written to `out`; with a null `out` the mode stays as it is, too.
void GetMargins(DeviceMode& mode, Margins* out, uint32_t target_unit);

/// The whole sheet; `size` is the one of `mode`.
Extent SheetSize(const DeviceMode& mode, const PaperSize& size, PaperUnit unit);
Extent SheetSize(const DeviceMode& mode, PaperUnit unit);

/// The sheet less its margins, never below zero. Stores the margin unit as GetMargins does.
Extent PrintableSize(DeviceMode& mode, const PaperSize& size, PaperUnit unit);
Extent PrintableSize(DeviceMode& mode, PaperUnit unit);

}  // namespace quillo
