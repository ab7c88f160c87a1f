#include "host/preview/preview.h"

#include <algorithm>
#include <cstring>

#include "base/gdi_owners.h"
#include "host/base/failure.h"
#include "host/preview/png_file.h"

namespace quillo::host {

namespace {

constexpr char kCannotRender[] = "cannot render the preview of a page";

int Pixels(LONG hundredths_of_millimetre, int dpi) {
  return std::max(1, MulDiv(hundredths_of_millimetre, dpi, 2540));
}

/// Plays one record. Blits that name no stretch mode are reduced as pictures are: the mode that a
/// metafile starts with would keep the darkest pixel of each block.
int CALLBACK PlayRecord(HDC dc, HANDLETABLE* handles, const ENHMETARECORD* record, int count,
                        LPARAM) {
  if (record->iType == EMR_HEADER) SetStretchBltMode(dc, HALFTONE);
  PlayEnhMetaFileRecord(dc, handles, record, static_cast<UINT>(count));
  return 1;
}

}  // namespace

void WritePreview(const std::filesystem::path& page, const std::filesystem::path& png, int dpi) {
  const EnhMetafile metafile(GetEnhMetaFileW(page.c_str()));
  ENHMETAHEADER header{};
  if (!metafile || GetEnhMetaFileHeader(metafile.Get(), sizeof header, &header) == 0) {
    throw ResultFailure(kCannotRender, "GetEnhMetaFile");
  }
  const RECTL& frame = header.rclFrame;
  const int width = Pixels(frame.right - frame.left, dpi);
  const int height = Pixels(frame.bottom - frame.top, dpi);

  BITMAPINFO format{};
  format.bmiHeader.biSize = sizeof format.bmiHeader;
  format.bmiHeader.biWidth = width;
  format.bmiHeader.biHeight = -height;
  format.bmiHeader.biPlanes = 1;
  format.bmiHeader.biBitCount = 24;
  void* bits = nullptr;
  const Bitmap bitmap(CreateDIBSection(nullptr, &format, DIB_RGB_COLORS, &bits, nullptr, 0));
  const CreatedDc dc(CreateCompatibleDC(nullptr));
  if (!bitmap || !dc) throw ResultFailure(kCannotRender, "CreateDIBSection");
  const size_t stride = (static_cast<size_t>(width) * 24 + 31) / 32 * 4;
  const MutableBytes rows(static_cast<std::byte*>(bits), stride * static_cast<size_t>(height));
  std::memset(rows.data(), 0xFF, rows.size());
  {
    const SelectScope drawn_on(dc.Get(), bitmap.Get());
    const RECT sheet{0, 0, width, height};
    // The answer is FALSE as soon as one record fails, which the page may well bear.
    EnumEnhMetaFile(dc.Get(), metafile.Get(), PlayRecord, nullptr, &sheet);
    GdiFlush();
  }
  WritePng(png, {width, height, stride, rows}, dpi);
}

}  // namespace quillo::host
