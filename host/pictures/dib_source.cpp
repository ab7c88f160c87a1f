#include "host/pictures/dib_source.h"

#include "host/pictures/picture_decoder.h"

namespace quillo::host::emf {

namespace {

// Pixels of a coded picture: 100 MB decoded, and as much again on each step to the page.
constexpr uint64_t kMaxCodedPixels = 1 << 25;

}  // namespace

BitmapSource SourceOf(const Dib& dib) {
  if (dib.coding == Dib::Coding::kJpeg || dib.coding == Dib::Coding::kPng) {
    return PictureDecoder(dib.bits).Frame(0, kMaxCodedPixels);
  }
  BitmapSource bitmap;
  bitmap.width = dib.width;
  bitmap.height = dib.height;
  bitmap.bits_per_pixel = dib.depth;
  bitmap.top_down = dib.top_down;
  bitmap.run_length = dib.coding == Dib::Coding::kRunLength;
  bitmap.red_mask = dib.red_mask;
  bitmap.green_mask = dib.green_mask;
  bitmap.blue_mask = dib.blue_mask;
  bitmap.palette = dib.palette;
  bitmap.bits = PictureBits::Lent(dib.bits);
  return bitmap;
}

}  // namespace quillo::host::emf
