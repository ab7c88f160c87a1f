#pragma once

#include <cstring>

#include "host/engine/drawing.h"

namespace quillo::host {

/// Where a pixel is among a picture's bytes, 24 bits a pixel; pixels are numbered row by row.
inline size_t PlaceOf(const BitmapSource& picture, size_t pixel) {
  const auto width = static_cast<size_t>(picture.width);
  return pixel / width * picture.Stride() + pixel % width * 3;
}

/// A picture of 24 bits a pixel, rows from the top, whose pixels have the colours of `colour_of`.
template <typename ColourOf>
BitmapSource Picture24(LONG width, LONG height, ColourOf colour_of) {
  BitmapSource picture;
  picture.width = width;
  picture.height = height;
  picture.bits_per_pixel = 24;
  picture.top_down = true;
  picture.bits.resize(picture.Stride() * static_cast<size_t>(height));
  for (size_t i = 0; i < static_cast<size_t>(width * height); ++i) {
    const auto colour = static_cast<uint32_t>(colour_of(i));
    std::memcpy(&picture.bits[PlaceOf(picture, i)], &colour, 3);
  }
  return picture;
}

/// The colour of a pixel, 0x00RRGGBB.
inline uint32_t Pixel(const BitmapSource& picture, LONG pixel) {
  uint32_t colour = 0;
  std::memcpy(&colour, &picture.bits[PlaceOf(picture, static_cast<size_t>(pixel))], 3);
  return colour;
}

}  // namespace quillo::host
