#include "host/preview/sheet_bitmap.h"

#include "host/engine/polygons.h"

namespace quillo::host {

SheetBitmap::SheetBitmap(SIZE size) : size_(size) {
  BITMAPINFO format{};
  format.bmiHeader.biSize = sizeof format.bmiHeader;
  format.bmiHeader.biWidth = size.cx;
  format.bmiHeader.biHeight = -size.cy;
  format.bmiHeader.biPlanes = 1;
  format.bmiHeader.biBitCount = 24;
  void* bits = nullptr;
  bitmap_.Reset(CreateDIBSection(nullptr, &format, DIB_RGB_COLORS, &bits, nullptr, 0));
  bits_ = static_cast<std::byte*>(bits);
}

std::vector<RECT> SheetBitmap::Visible(HDC dc, const RECT& rect) const {
  const RECT part = Part(rect);
  if (IsRectEmpty(&part)) return {};
  const Region clip(CreateRectRgn(0, 0, 0, 0));
  if (GetClipRgn(dc, clip.Get()) != 1) return {part};
  std::vector<RECT> areas = RectanglesOf(clip.Get());
  std::erase_if(areas, [&](RECT& area) { return !IntersectRect(&area, &area, &part); });
  return areas;
}

}  // namespace quillo::host
