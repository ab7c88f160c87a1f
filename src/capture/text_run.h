#pragma once

#include "base/ddi.h"

#include <span>

#include "driver/device/device.h"

namespace quillo {

/// Records glyphs of a string object: as one text record, or glyph by glyph where GDI's own
/// advances would misplace them. Nothing is recorded without glyphs.
///
/// `font_transform` takes font space to the page; positions are recorded in font space, since
/// playback draws under it. `opaque_rect` (device pixels) may be null. `characters` holds as many
/// UTF-16 units (or glyph indexes) as there are glyphs; null records no characters. False, without
/// records, when the transform has no inverse.
bool WriteTextRun(DEVICE_PDEV& device, std::span<const GLYPHPOS> glyphs, const STROBJ& text,
                  XFORMOBJ* font_transform, const RECTL* opaque_rect, const wchar_t* characters);

}  // namespace quillo
