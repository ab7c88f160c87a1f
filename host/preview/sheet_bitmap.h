#pragma once

#include "base/windows.h"

#include <cstddef>
#include <vector>

#include "base/bytes.h"
#include "base/dib.h"
#include "base/gdi_owners.h"

namespace quillo::host {

/// A bitmap whose pixels lie in memory: rows from the top, three bytes a pixel, blue first.
class SheetBitmap {
 public:
  /// Pixels; both above 0. False when memory does not suffice.
  explicit SheetBitmap(SIZE size);
  explicit operator bool() const { return static_cast<bool>(bitmap_); }

  HBITMAP Handle() const { return bitmap_.Get(); }
  SIZE Size() const { return size_; }
  /// What of a rectangle lies on the sheet.
  RECT Part(const RECT& rect) const {
    const RECT whole{0, 0, size_.cx, size_.cy};
    RECT part;
    IntersectRect(&part, &rect, &whole);  // empty: all 0
    return part;
  }
  /// The areas of a rectangle that a DC of the sheet shows. Throws std::bad_alloc.
  std::vector<RECT> Visible(HDC dc, const RECT& rect) const;
  /// Bytes from row to row.
  size_t Stride() const { return DibStride(static_cast<uint64_t>(size_.cx), 24); }
  MutableBytes Rows() { return {bits_, Stride() * static_cast<size_t>(size_.cy)}; }
  /// The first byte of a pixel on the canvas.
  std::byte* At(LONG x, LONG y) {
    return bits_ + static_cast<size_t>(y) * Stride() + static_cast<size_t>(x) * 3;
  }

 private:
  SIZE size_;
  std::byte* bits_ = nullptr;
  Bitmap bitmap_;
};

}  // namespace quillo::host
