#include "host/preview/sheet_bitmap.h"

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

}  // namespace quillo::host
