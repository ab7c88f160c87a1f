#include "host/printer/sheet.h"

#include <algorithm>
#include <cctype>
#include <charconv>

#include "host/base/text.h"
#include "host/printer/paper_names.h"

namespace quillo::host {

namespace {

/// In lower case, without the characters in `ignored`.
std::string Simplified(std::string_view text, std::string_view ignored) {
  std::string simple;
  for (const char c : text) {
    if (ignored.find(c) != std::string_view::npos) continue;
    simple += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return simple;
}

std::string SimpleName(std::string_view name) { return Simplified(name, " -_"); }

/// Takes millimetres from the start of `text`. In tenths; 0 when there are none or they do not fit
/// a device mode.
int32_t TakeMillimetres(std::string_view& text) {
  double millimetres = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), millimetres,
                                            std::chars_format::fixed);
  if (error != std::errc()) return 0;
  text.remove_prefix(static_cast<size_t>(end - text.data()));
  const double tenths = millimetres * 10 + 0.5;
  return tenths >= 10 && tenths < INT16_MAX ? static_cast<int32_t>(tenths) : 0;
}

std::optional<SheetChoice> ParseSize(std::string_view text) {
  SheetChoice sheet{.paper = DMPAPER_USER};
  sheet.width = TakeMillimetres(text);
  if (!text.starts_with('x')) return std::nullopt;
  text.remove_prefix(1);
  sheet.height = TakeMillimetres(text);
  if (sheet.width == 0 || sheet.height == 0 || !(text.empty() || text == "mm")) return std::nullopt;
  return sheet;
}

}  // namespace

std::optional<SheetChoice> ParsePaper(std::string_view text, std::span<const NamedSheet> custom) {
  const std::string name = SimpleName(text);
  for (const NamedSheet& paper : custom) {
    if (SimpleName(paper.name) == name) return paper.sheet;
  }
  for (const PaperName& known : PaperNames()) {
    if (SimpleName(known.name) == name) return SheetChoice{.paper = known.paper};
  }
  return ParseSize(Simplified(text, " "));
}

SheetChoice SheetOf(const DEVMODEW& mode) {
  SheetChoice sheet{.paper = mode.dmPaperSize,
                    .landscape = mode.dmOrientation == DMORIENT_LANDSCAPE};
  if (sheet.paper >= DMPAPER_USER) {
    sheet.width = mode.dmPaperWidth;
    sheet.height = mode.dmPaperLength;
  }
  return sheet;
}

std::string DescribeSheet(const SheetChoice& sheet) {
  const auto names = PaperNames();
  const auto known = std::ranges::find(names, sheet.paper, &PaperName::paper);
  std::string text = known != names.end()
                         ? std::string(known->name)
                         : FormatTenths(sheet.width) + " x " + FormatTenths(sheet.height) + " mm";
  if (sheet.landscape) text += " landscape";
  return text;
}

DeviceMode MakeDeviceMode(const std::wstring& printer, const SheetChoice& sheet, int dpi) {
  DeviceMode mode;
  BuildDefaultDeviceMode(mode, printer.c_str());
  mode.pub.dmFields |= DM_YRESOLUTION;
  mode.pub.dmOrientation = sheet.landscape ? DMORIENT_LANDSCAPE : DMORIENT_PORTRAIT;
  mode.pub.dmPaperSize = sheet.paper;
  mode.pub.dmPrintQuality = static_cast<short>(dpi);
  mode.pub.dmYResolution = static_cast<short>(dpi);
  if (sheet.paper >= DMPAPER_USER) {
    mode.pub.dmFields |= DM_PAPERWIDTH | DM_PAPERLENGTH;
    // Custom papers may have longer sides; the driver looks those up by the paper's number.
    const auto side = [](int32_t tenths) {
      return static_cast<int16_t>(std::min<int32_t>(tenths, INT16_MAX));
    };
    mode.pub.dmPaperWidth = side(sheet.width);
    mode.pub.dmPaperLength = side(sheet.height);
  }
  return mode;
}

}  // namespace quillo::host
