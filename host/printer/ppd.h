#pragma once

#include <map>
#include <string>

namespace quillo::host {

/// A size in tenths of a millimetre, upright.
struct PaperSize {
  int width;
  int height;
};

/// The printer description from which Wine's printer driver takes sheets and resolution of a DC on
/// this printer: all standard forms, and `user_sizes` by their paper number, DMPAPER_USER or more.
///
/// That driver knows no resolution but the default one for device modes like ours, so the
/// description holds for one resolution. And it cuts the size of a DC to whole pixels first and
/// then to whole millimetres, whose ratio is the scale of every metafile made for the DC: each
/// side is therefore the next whole number of millimetres, and of pixels that cover it.
std::string MakePpd(int dpi, const std::map<int, PaperSize>& user_sizes);

}  // namespace quillo::host
