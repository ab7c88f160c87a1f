#include "base/ddi.h"

#include <gtest/gtest.h>

#include "capture/hooks.h"
#include "driver/device.h"
#include "host/engine/services/clips.h"
#include "host/engine/services/colors.h"
#include "host/engine/services/surfaces.h"
#include "job/job.h"
#include "playback/canvas.h"
#include "playback/picture.h"

namespace quillo::test {
namespace {

constexpr int kSide = 40;

/// A device whose job draws on a page in memory.
class PageDevice {
 public:
  PageDevice() {
    device_.signature = device_.closing_signature = kDeviceSignature;
    device_.resolution = {600, 600};
    device_.job = &job_;
    job_.playback.page_dc = page_.Get();
    surface.dhpdev = reinterpret_cast<DHPDEV>(&device_);
    surface.sizlBitmap = {kSide, kSide};
  }

  EnhMetafile ClosePage() { return page_.Close(); }

  SURFOBJ surface = {};

 private:
  struct Heap {
    HANDLE handle = HeapCreate(0, 0, 0);
    ~Heap() { HeapDestroy(handle); }
  };
  Heap heap_;
  DEVICE_PDEV device_ = {};
  MetafileDc page_{CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr)};
  CQloPrinter job_{heap_.handle, /*job_printer=*/nullptr, /*id=*/1};
};

struct Call {
  SURFOBJ* target;
  SURFOBJ* source;
  CLIPOBJ* clip;
  XLATEOBJ* translation;
  RECTL* to;
  RECTL* from;
};

struct HookCase {
  const char* name;
  BOOL (*draw)(const Call& call);
};

constexpr HookCase kHooks[] = {
    {"DrvBitBlt",
     [](const Call& call) {
       POINTL origin = {call.from->left, call.from->top};
       return quillo::DrvBitBlt(call.target, call.source, nullptr, call.clip, call.translation,
                                call.to, &origin, nullptr, nullptr, nullptr, 0xCCCC);
     }},
    {"DrvCopyBits",
     [](const Call& call) {
       POINTL origin = {call.from->left, call.from->top};
       return quillo::DrvCopyBits(call.target, call.source, call.clip, call.translation, call.to,
                                  &origin);
     }},
    {"DrvStretchBlt",
     [](const Call& call) {
       return quillo::DrvStretchBlt(call.target, call.source, nullptr, call.clip, call.translation,
                                    nullptr, nullptr, call.to, call.from, nullptr, COLORONCOLOR);
     }},
    {"DrvAlphaBlend",
     [](const Call& call) {
       BLENDOBJ blend = {{AC_SRC_OVER, 0, 255, 0}};
       return quillo::DrvAlphaBlend(call.target, call.source, call.clip, call.translation, call.to,
                                    call.from, &blend);
     }},
};

host::PathRun ClosedRun(std::initializer_list<POINTL> pixels) {
  host::PathRun run = {PD_BEGINSUBPATH | PD_ENDSUBPATH | PD_CLOSEFIGURE, {}};
  for (const POINTL& pixel : pixels) run.points.push_back({pixel.x << 4, pixel.y << 4});
  return run;
}

struct ClipCase {
  const char* name;
  host::ClipObject clip;
  bool (*inside)(int x, int y);
};

constexpr std::pair<ULONG, uint16_t> kFormats[] = {
    {BMF_1BPP, 1}, {BMF_4BPP, 4}, {BMF_8BPP, 8}, {BMF_16BPP, 16}, {BMF_24BPP, 24}, {BMF_32BPP, 32}};

bool Holds(const RECTL& r, int x, int y) {
  return x >= r.left && x < r.right && y >= r.top && y < r.bottom;
}

// The path of a rectangular clip goes round it a pixel outside; its left and top edges are inside.
constexpr RECTL kCut = {12, 9, 22, 15};
constexpr RECTL kCutWithEdges = {11, 8, 22, 15};
constexpr RECTL kFirst = {0, 0, 14, 40};
constexpr RECTL kSecond = {18, 10, 40, 40};

void CheckRoundTrip(const HookCase& hook, ULONG format, const Picture& picture, bool top_down,
                    ClipCase& c) {
  Payload bits = picture.Bits(top_down);
  host::Surface source({picture.width, picture.height}, format, top_down, bits.data(),
                       static_cast<ULONG>(bits.size()), static_cast<LONG>(picture.RowBytes()));
  host::XlateObject colours({std::begin(Picture::kPalette), std::end(Picture::kPalette)});
  XLATEOBJ* translation = picture.bit_count <= 8 ? &colours : nullptr;
  RECTL from = {1, 2, 16, 10};
  RECTL to = {10, 8, 25, 16};
  PageDevice device;
  ASSERT_TRUE(hook.draw({&device.surface, &source, &c.clip, translation, &to, &from}));
  Canvas canvas(kSide, kSide);
  canvas.Play(device.ClosePage().Get());
  for (int y = 0; y < kSide; ++y) {
    for (int x = 0; x < kSide; ++x) {
      const bool drawn = Holds(to, x, y) && c.inside(x, y);
      ASSERT_EQ(canvas.Pixel(x, y),
                drawn ? picture.Colour(x - to.left + from.left, y - to.top + from.top) : 0xFFFFFF)
          << x << ',' << y;
    }
  }
}

TEST(RoundTrip, EveryHookDepthOrientationAndClip_PictureOnThePage) {
  ClipCase clips[] = {
      {"trivial", {DC_TRIVIAL, {0, 0, kSide, kSide}}, [](int, int) { return true; }},
      {"rectangle", {DC_RECT, kCut}, [](int x, int y) { return Holds(kCutWithEdges, x, y); }},
      {"complex",
       {{0, 0, kSide, kSide},
        {ClosedRun({{0, 0}, {0, 40}, {14, 40}, {14, 0}}),
         ClosedRun({{18, 10}, {18, 40}, {40, 40}, {40, 10}})}},
       [](int x, int y) { return Holds(kFirst, x, y) || Holds(kSecond, x, y); }},
  };
  for (const HookCase& hook : kHooks) {
    for (const auto& [format, bit_count] : kFormats) {
      for (const bool top_down : {false, true}) {
        for (ClipCase& c : clips) {
          SCOPED_TRACE(testing::Message()
                       << hook.name << ' ' << bit_count << ' ' << top_down << ' ' << c.name);
          CheckRoundTrip(hook, format, {.bit_count = bit_count, .width = 17, .height = 11},
                         top_down, c);
        }
      }
    }
  }
}

}  // namespace
}  // namespace quillo::test
