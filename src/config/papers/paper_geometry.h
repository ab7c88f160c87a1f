#pragma once

#include <cstdint>

#include "config/device_mode/device_mode.h"
#include "config/papers/sheet.h"

namespace quillo {

/// Makes inches the unit of the stored margins; to be called when a mode is set.
///
/// Compatibility: the margins count as inches whatever unit their writer stored. Kept for the
/// stored settings of installed printers and for the record stream, which carries the mode.
void UseInchMargins(DeviceMode& mode);

/// The sheet of a device mode. Opens the printer and reads the registry for a custom paper (number
/// above 256), so it is asked once per mode.
Sheet ResolveSheet(const DeviceMode& mode);

// One question at a time, for other modules of the product that share these sources. The driver
// itself works with the Sheet.

/// The size of the paper as it lies in the printer, and its SizeClass. Each output may be null.
void LookUpPaperSize(const DeviceMode& mode, Fraction* width, Fraction* height,
                     uint32_t* unit_class);

/// Converts a size of a SizeClass into a PaperUnit, at the resolution of `mode`. Returns 1, or 0
/// with `out` untouched when a pointer is null (`mode` may be null unless pixels are asked for).
/// An unknown class or unit yields an extent of 0 by 0.
int ConvertPaperSize(const DeviceMode* mode, const Fraction* width, const Fraction* height,
                     uint32_t source_class, uint32_t target_unit, Extent* out);

/// The margins of a device mode, which gets inches as their unit; `out` stays as it is for an
/// unknown unit. A null `out` changes nothing.
void GetMargins(DeviceMode& mode, Margins* out, uint32_t target_unit);

}  // namespace quillo
