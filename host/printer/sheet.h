#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "config/device_mode/device_mode.h"

namespace quillo::host {

/// What a page is printed on.
struct SheetChoice {
  int16_t paper = DMPAPER_LETTER;  // dmPaperSize
  int32_t width = 0;               // 0.1 mm, upright; 0 for standard forms
  int32_t height = 0;
  bool landscape = false;

  friend bool operator==(const SheetChoice&, const SheetChoice&) = default;
};

/// A paper with a name of its own.
struct NamedSheet {
  std::string name;
  SheetChoice sheet;

  friend bool operator==(const NamedSheet&, const NamedSheet&) = default;
};

/// The upright sheet of a paper name such as "A4", or of a size such as "100x150.5" in millimetres.
/// Letter case and blanks are ignored, as are '-' and '_' in names. Nothing for an unknown name or
/// an absurd size. `custom` papers come first; of two with one name, the first.
std::optional<SheetChoice> ParsePaper(std::string_view text,
                                      std::span<const NamedSheet> custom = {});

/// The sheet of a device mode.
SheetChoice SheetOf(const DEVMODEW& mode);

/// "A4", "A4 landscape", "100 x 150.5 mm".
std::string DescribeSheet(const SheetChoice& sheet);

/// The device mode of this driver for a page on `sheet`. `dpi`: kMinDpi to kMaxDpi, the range that
/// the driver accepts.
DeviceMode MakeDeviceMode(const std::wstring& printer, const SheetChoice& sheet, int dpi);
inline constexpr int kMinDpi = 50;
inline constexpr int kMaxDpi = 1600;

}  // namespace quillo::host
