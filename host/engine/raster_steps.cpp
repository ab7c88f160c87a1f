#include "host/engine/raster_steps.h"

#include <vector>

#include "host/engine/raster.h"

namespace quillo::host {
namespace {

/// What an operation makes of a destination, bit by bit.
uint32_t Combine(uint8_t rop3, uint32_t source, uint32_t destination) {
  return ((rop3 & 1) != 0 ? ~source & ~destination : 0) |
         ((rop3 & 2) != 0 ? ~source & destination : 0) |
         ((rop3 & 4) != 0 ? source & ~destination : 0) |
         ((rop3 & 8) != 0 ? source & destination : 0);
}

}  // namespace

std::optional<BitmapSource> JoinSteps(std::span<const RasterStep> steps, SIZEL size) {
  constexpr uint32_t kBlack = 0, kWhite = 0xFFFFFF;
  std::vector<PixelReader> pixels;
  for (const RasterStep& step : steps) pixels.emplace_back(*step.picture);
  BitmapSource joined = MakeArgb(size.cx, size.cy);
  for (LONG y = 0; y < size.cy; ++y) {
    for (LONG x = 0; x < size.cx; ++x) {
      uint32_t of_black = kBlack, of_white = kWhite;
      for (size_t i = 0; i < steps.size(); ++i) {
        const uint32_t colour = pixels[i].Colour(steps[i].corner.x + x, steps[i].corner.y + y);
        of_black = Combine(steps[i].rop3, colour, of_black);
        of_white = Combine(steps[i].rop3, colour, of_white);
      }
      of_black &= kWhite;
      of_white &= kWhite;
      if (of_black == of_white) {
        SetPixel(joined, x, y, of_black | kOpaque);
      } else if (of_black != kBlack || of_white != kWhite) {
        return std::nullopt;
      }
    }
  }
  return joined;
}

}  // namespace quillo::host
