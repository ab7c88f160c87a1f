#include "host/preview/preview.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "base/gdi_owners.h"
#include "host/base/failure.h"
#include "host/pictures/fewest_bits.h"
#include "host/preview/page_player.h"
#include "host/preview/png_file.h"

namespace quillo::host {

namespace {

constexpr char kCannotRender[] = "cannot render the preview of a page";

int Pixels(LONG hundredths_of_millimetre, int dpi) {
  return std::max(1, MulDiv(hundredths_of_millimetre, dpi, 2540));
}

}  // namespace

void WritePreview(const std::filesystem::path& page, const std::filesystem::path& png, int dpi) {
  const EnhMetafile metafile(GetEnhMetaFileW(page.c_str()));
  ENHMETAHEADER header{};
  if (!metafile || GetEnhMetaFileHeader(metafile.Get(), sizeof header, &header) == 0) {
    throw ResultFailure(kCannotRender, "GetEnhMetaFile");
  }
  const RECTL& frame = header.rclFrame;
  SheetBitmap sheet({Pixels(frame.right - frame.left, dpi), Pixels(frame.bottom - frame.top, dpi)});
  if (!sheet) throw ResultFailure(kCannotRender, "CreateDIBSection");
  std::memset(sheet.Rows().data(), 0xFF, sheet.Rows().size());
  if (!PlayPage(metafile.Get(), sheet)) throw ResultFailure(kCannotRender, "CreateCompatibleDC");
  BitmapSource picture;
  picture.width = sheet.Size().cx;
  picture.height = sheet.Size().cy;
  picture.bits_per_pixel = 24;
  picture.top_down = true;
  picture.bits = PictureBits::Lent(sheet.Rows());
  // Most pages have few colours; fewer bits are packed faster, and into less.
  WritePng(png, WithFewestBits(std::move(picture)), dpi);
}

}  // namespace quillo::host
