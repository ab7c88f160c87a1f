#include "base/ddi.h"

#include <algorithm>
#include <gtest/gtest.h>

#include "capture/hooks.h"
#include "driver/device/device.h"
#include "host/engine/services/clips.h"
#include "host/engine/services/colours.h"
#include "host/engine/services/surfaces.h"
#include "playback/picture.h"
#include "support/canvas.h"
#include "support/driver_job.h"

namespace quillo::test {
namespace {

constexpr int kSide = 40;

enum Hook { kBitBlt, kCopyBits, kStretchBlt, kAlphaBlend };

BOOL Draw(Hook hook, SURFOBJ* to, SURFOBJ* from, CLIPOBJ* clip, XLATEOBJ* xlate, RECTL to_rect,
          RECTL from_rect) {
  POINTL origin = {from_rect.left, from_rect.top};
  BLENDOBJ blend = {{AC_SRC_OVER, 0, 255, 0}};
  switch (hook) {
    case kBitBlt:
      return quillo::DrvBitBlt(to, from, nullptr, clip, xlate, &to_rect, &origin, nullptr, nullptr,
                               nullptr, 0xCCCC);
    case kCopyBits:
      return quillo::DrvCopyBits(to, from, clip, xlate, &to_rect, &origin);
    case kStretchBlt:
      return quillo::DrvStretchBlt(to, from, nullptr, clip, xlate, nullptr, nullptr, &to_rect,
                                   &from_rect, nullptr, COLORONCOLOR);
    default:
      return quillo::DrvAlphaBlend(to, from, clip, xlate, &to_rect, &from_rect, &blend);
  }
}

host::PathRun ClosedRun(std::initializer_list<POINTL> pixels) {
  host::PathRun run = {PD_BEGINSUBPATH | PD_ENDSUBPATH | PD_CLOSEFIGURE, {}};
  for (const POINTL& pixel : pixels) run.points.push_back({pixel.x << 4, pixel.y << 4});
  return run;
}

struct ClipCase {
  host::ClipObject clip;
  std::vector<RECTL> inside;
};

void CheckRoundTrip(Hook hook, ULONG format, const Picture& picture, bool top_down, ClipCase& c) {
  Payload bits = picture.Bits(top_down);
  host::Surface source({picture.width, picture.height}, format, top_down, bits.data(),
                       static_cast<ULONG>(bits.size()), static_cast<LONG>(picture.RowBytes()));
  host::XlateObject colours({std::begin(Picture::kPalette), std::end(Picture::kPalette)});
  constexpr RECTL kFrom = {1, 2, 16, 10};
  constexpr RECTL kTo = {10, 8, 25, 16};
  MetafileDc page(CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr));
  DriverJob job({kSide, kSide});
  ASSERT_TRUE(Draw(hook, job.SurfaceOn(page.Get()), &source, &c.clip,
                   picture.bit_count <= 8 ? &colours : nullptr, kTo, kFrom));
  Canvas canvas(kSide, kSide);
  canvas.Play(page.Close().Get());
  for (int y = 0; y < kSide; ++y) {
    for (int x = 0; x < kSide; ++x) {
      const auto holds = [x, y](const RECTL& r) {
        return x >= r.left && x < r.right && y >= r.top && y < r.bottom;
      };
      const bool drawn = holds(kTo) && std::ranges::any_of(c.inside, holds);
      ASSERT_EQ(
          canvas.Pixel(x, y),
          drawn ? picture.Colour(x - kTo.left + kFrom.left, y - kTo.top + kFrom.top) : 0xFFFFFF)
          << x << ',' << y;
    }
  }
}

TEST(RoundTrip, EveryHookDepthOrientationAndClip_PictureOnThePage) {
  constexpr RECTL kAll = {0, 0, kSide, kSide};
  ClipCase clips[] = {
      {{DC_TRIVIAL, kAll}, {kAll}},
      // The path of a rectangle goes round it a pixel outside; its left and top edges are inside.
      {{DC_RECT, {12, 9, 22, 15}}, {{11, 8, 22, 15}}},
      {{kAll,
        {ClosedRun({{0, 0}, {0, 40}, {14, 40}, {14, 0}}),
         ClosedRun({{18, 10}, {18, 40}, {40, 40}, {40, 10}})}},
       {{0, 0, 14, 40}, {18, 10, 40, 40}}},
  };
  constexpr uint16_t kDepths[] = {1, 4, 8, 16, 24, 32};  // of BMF_1BPP and its successors
  for (const Hook hook : {kBitBlt, kCopyBits, kStretchBlt, kAlphaBlend}) {
    for (ULONG i = 0; i < std::size(kDepths); ++i) {
      for (const bool top_down : {false, true}) {
        for (ClipCase& c : clips) {
          SCOPED_TRACE(testing::Message() << "hook " << hook << ", " << kDepths[i] << " bits, clip "
                                          << int{c.clip.iDComplexity});
          CheckRoundTrip(hook, BMF_1BPP + i, {.bit_count = kDepths[i], .width = 17, .height = 11},
                         top_down, c);
        }
      }
    }
  }
}

}  // namespace
}  // namespace quillo::test
