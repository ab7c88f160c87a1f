#pragma once

#include "base/windows.h"

#include <cstdint>
#include <cstring>

#include "base/gdi_owners.h"

namespace quillo::test {

/// A white picture of 32 bits per pixel to draw on, one device unit a pixel.
class Canvas {
 public:
  Canvas(int width, int height) : width_(width) {
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof info.bmiHeader, width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* pixels = nullptr;
    bitmap_.Reset(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pixels, nullptr, 0));
    pixels_ = static_cast<uint32_t*>(pixels);
    std::memset(pixels_, 0xFF, size_t{4} * static_cast<size_t>(width * height));
    SelectObject(dc_.Get(), bitmap_.Get());
  }
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;
  ~Canvas() { dc_.Reset(); }

  [[nodiscard]] HDC Dc() const { return dc_.Get(); }

  void Play(HENHMETAFILE metafile) {
    SetGraphicsMode(dc_.Get(), GM_ADVANCED);  // what metafiles are stored for
    EnumEnhMetaFile(nullptr, metafile, Draw, dc_.Get(), nullptr);
  }

  /// 0x00RRGGBB; the origin is at the top left.
  [[nodiscard]] uint32_t Pixel(int x, int y) const {
    GdiFlush();
    return pixels_[y * width_ + x] & 0xFFFFFF;
  }

 private:
  static int CALLBACK Draw(HDC, HANDLETABLE* handles, const ENHMETARECORD* record, int count,
                           LPARAM dc) {
    PlayEnhMetaFileRecord(reinterpret_cast<HDC>(dc), handles, record, static_cast<UINT>(count));
    return 1;
  }

  int width_;
  Bitmap bitmap_;
  CreatedDc dc_{CreateCompatibleDC(nullptr)};
  uint32_t* pixels_ = nullptr;
};

}  // namespace quillo::test
