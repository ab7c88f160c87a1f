#include "tests/host/engine/graphics_fixture.h"

namespace quillo::host {
namespace {

std::vector<std::byte> Bytes(std::initializer_list<int> values) {
  std::vector<std::byte> bytes;
  for (const int value : values) bytes.push_back(static_cast<std::byte>(value));
  return bytes;
}

/// 3 by 2 pixels of 8 bits, top-down: 0 1 2 / 3 2 1.
BitmapSource Indexed() {
  BitmapSource picture;
  picture.width = 3;
  picture.height = 2;
  picture.bits_per_pixel = 8;
  picture.top_down = true;
  picture.palette = {0x000000, 0xFF0000, 0x00FF00, 0x0000FF};
  picture.bits = Bytes({0, 1, 2, 0, 3, 2, 1, 0});
  return picture;
}

BitmapSource Mono(std::initializer_list<int> rows) {
  BitmapSource picture;
  picture.width = 2;
  picture.height = static_cast<LONG>(rows.size());
  picture.bits_per_pixel = 1;
  picture.top_down = true;
  picture.palette = {0x000000, 0xFFFFFF};
  for (const int row : rows) {
    for (const int byte : {row, 0, 0, 0}) picture.bits.push_back(static_cast<std::byte>(byte));
  }
  return picture;
}

class BlitTest : public GraphicsTest {
 protected:
  const BrushDescription red_ = BrushDescription::Solid(RGB(255, 0, 0));
};

TEST_F(BlitTest, BitBlt_GoesToTheHookOfItsOperation) {
  Graphics page = Page();
  const BitmapSource mono = Mono({0x80, 0x40});
  page.BitBlt({10, 10, 12, 12}, 0xCC, &red_, &mono, {0, 0}, {});
  page.BitBlt({10, 10, 12, 12}, 0x88, &red_, &mono, {0, 0}, {});
  page.BitBlt({10, 10, 12, 12}, 0xE2, &red_, &mono, {0, 0}, {});
  page.BitBlt({10, 10, 12, 12}, 0xF0, &red_, &mono, {0, 0}, {});
  page.BitBlt({12, 12, 10, 10}, 0x55, nullptr, nullptr, {0, 0}, {});
  page.BitBlt({10, 10, 10, 12}, 0x55, nullptr, nullptr, {0, 0}, {});
  EXPECT_EQ(
      driver_.calls,
      (Calls{"CopyBits 10,10,12,12 from 0,0 of 2x2x1 { 0 ffffff } 80/40",
             "BitBlt 10,10,12,12 rop 8888, from 0,0 of 2x2x1 { 0 ffffff } 80/40",
             "BitBlt 10,10,12,12 rop e2e2, solid ff0000, from 0,0 of 2x2x1 { 0 ffffff } 80/40",
             "BitBlt 10,10,12,12 rop f0f0, solid ff0000", "BitBlt 10,10,12,12 rop 5555"}));
}

TEST_F(BlitTest, SourceOutsideThePicture_CutsTheTarget) {
  Graphics page = Page();
  const BitmapSource mono = Mono({0x80, 0x40});
  page.BitBlt({10, 10, 20, 20}, 0xCC, nullptr, &mono, {-3, 1}, {});
  page.BitBlt({10, 10, 20, 20}, 0xCC, nullptr, &mono, {5, 0}, {});
  page.StretchBlt({0, 0, 40, 40}, mono, {-1, 0, 3, 4}, 0xCC, nullptr, COLORONCOLOR, {});
  page.StretchBlt({40, 0, 0, 40}, mono, {-1, 0, 3, 4}, 0xCC, nullptr, COLORONCOLOR, {});
  EXPECT_EQ(driver_.calls,
            (Calls{"CopyBits 13,10,15,11 from 0,1 of 2x2x1 { 0 ffffff } 80/40",
                   "StretchBlt 10,0,30,20 from 0,0,2,2 of 2x2x1 { 0 ffffff } 80/40, mode 3",
                   "StretchBlt 30,0,10,20 from 0,0,2,2 of 2x2x1 { 0 ffffff } 80/40, mode 3"}));
}

TEST_F(BlitTest, UnusualPictures_ReachTheDriverInFormsThatItKnows) {
  BitmapSource high_color;  // 5-6-5
  high_color.width = 2;
  high_color.height = 1;
  high_color.bits_per_pixel = 16;
  high_color.red_mask = 0xF800;
  high_color.green_mask = 0x07E0;
  high_color.blue_mask = 0x001F;
  high_color.bits = Bytes({0xE0, 0x07, 0x1F, 0xF8});
  BitmapSource cut = high_color;  // 5-5-5 with half its pixels
  cut.red_mask = cut.green_mask = cut.blue_mask = 0;
  cut.bits.resize(2);
  BitmapSource runs = Indexed();  // 2 of index 1, end of row, step, 1 of index 3, 2 too many
  runs.top_down = false;
  runs.run_length = true;
  runs.bits = Bytes({2, 1, 0, 0, 0, 2, 1, 0, 4, 3, 0, 1});
  Graphics page = Page();
  page.BitBlt({0, 0, 2, 1}, 0xCC, nullptr, &high_color, {0, 0}, {});
  page.BitBlt({0, 0, 2, 1}, 0xCC, nullptr, &cut, {0, 0}, {});
  page.BitBlt({0, 0, 3, 2}, 0xCC, nullptr, &runs, {0, 0}, {});
  page.BitBlt({0, 0, 3, 2}, 0x88, nullptr, &runs, {0, 0}, {});
  EXPECT_EQ(driver_.calls, (Calls{"CopyBits 0,0,2,1 from 0,0 of 2x1x32 00ff0000ff00ff00",
                                  "CopyBits 0,0,2,1 from 0,0 of 2x1x16 e0070000",
                                  "CopyBits 0,0,3,2 from 0,0 of 3x2x8 rle",
                                  "BitBlt 0,0,3,2 rop 8888, from 0,0 of 3x2x8 000303/010100"}));
}

TEST_F(BlitTest, StretchWithAnOperation_IsStretchedByTheEngine) {
  Graphics page = Page();
  const BitmapSource mono = Mono({0x80, 0x40});
  DrawState state;
  state.clip = ClipShape(RECTL{0, 0, 4, 3});
  page.StretchBlt({4, 0, 0, 4}, mono, {0, 0, 2, 2}, 0xE2, &red_, COLORONCOLOR, state);
  page.MaskBlt({0, 0, 4, 4}, 0xAACC, nullptr, mono, {0, 0, 2, 2}, mono, {0, 0}, state);
  page.MaskBlt({0, 0, 2, 2}, 0xAACC, nullptr, mono, {0, 0, 2, 2}, mono, {1, 1}, state);
  EXPECT_EQ(driver_.calls,
            (Calls{"BitBlt 0,0,4,3 rop e2e2, solid ff0000, from 0,0 of 4x3x1 { 0 ffffff } 30/30/c0",
                   "BitBlt 0,0,4,3 rop aacc, from 0,0 of 4x3x1 { 0 ffffff } c0/c0/30, mask 0,0 of "
                   "4x3x1 c0/c0/30",
                   "BitBlt 0,0,1,1 rop aacc, from 0,0 of 2x2x1 { 0 ffffff } 80/40, mask 1,1 of "
                   "2x2x1 80/40"}));
}

TEST_F(BlitTest, ColorKeysAndMirroredBlends_BecomeAlpha) {
  Graphics page = Page();
  page.TransparentBlt({9, 0, 0, 9}, Indexed(), {0, 0, 3, 2}, 0x00FF00, {});
  page.AlphaBlend({0, 9, 9, 0}, Indexed(), {0, 0, 1, 2}, {AC_SRC_OVER, 0, 100, 0}, {});
  page.AlphaBlend({0, 0, 9, 9}, Indexed(), {0, 0, 1, 2}, {AC_SRC_OVER, 0, 100, 0}, {});
  EXPECT_EQ(driver_.calls,
            (Calls{"AlphaBlend 0,0,9,9 from 0,0,3,2 of 3x2x32 "
                   "000000000000ffff000000ff/0000ffff00000000ff0000ff, 255/1",
                   "AlphaBlend 0,0,9,9 from 0,0,1,2 of 1x2x32 ff000000/00000000, 100/0",
                   "AlphaBlend 0,0,9,9 from 0,0,1,2 of 3x2x8 000102/030201, 100/0"}));
}

TEST_F(BlitTest, Parallelograms_AreTurnedOrSlantedByTheEngine) {
  Graphics page = Page();
  const auto at = [](LONG x, LONG y) { return POINTFIX{LTOFX(x), LTOFX(y)}; };
  page.PlgBlt({at(0, 0), at(6, 0), at(0, 4)}, Indexed(), {0, 0, 3, 2}, nullptr, {}, HALFTONE, {});
  page.PlgBlt({at(4, 0), at(4, 6), at(0, 0)}, Indexed(), {0, 0, 3, 2}, nullptr, {}, HALFTONE, {});
  const BitmapSource mask = Mono({0x80, 0xC0});
  page.PlgBlt({at(0, 0), at(3, 0), at(0, 2)}, Indexed(), {0, 0, 3, 2}, &mask, {}, HALFTONE, {});
  // The rest of the rectangle is left to the clip.
  page.PlgBlt({at(0, 0), at(2, 2), at(-2, 2)}, Indexed(), {1, 0, 2, 1}, nullptr, {}, HALFTONE, {});
  EXPECT_EQ(driver_.calls, (Calls{"StretchBlt 0,0,6,4 from 0,0,3,2 of 3x2x8 000102/030201, mode 4",
                                  "StretchBlt 4,0,0,6 from 0,0,2,3 of 2x3x32 "
                                  "00000000ff000000/0000ff0000ff0000/00ff00000000ff00, mode 4",
                                  "AlphaBlend 0,0,3,2 from 0,0,3,2 of 3x2x32 "
                                  "000000ff0000000000000000/ff0000ff00ff00ff00000000, 255/1",
                                  "CopyBits 0,1,2,4 from 0,0 of 2x3x32 "
                                  "0000ffff0000ffff/0000ffff0000ffff/0000ffff0000ffff"}));
}

TEST_F(BlitTest, Gradients_BecomePictures) {
  Graphics page = Page();
  const TRIVERTEX vertices[] = {
      {0, 0, 0xFF00, 0, 0, 0}, {2, 2, 0, 0xFF00, 0, 0}, {0, 2, 0, 0, 0, 0}};
  const ULONG pair[] = {0, 1, 1, 9};
  const ULONG triangle[] = {0, 1, 2};
  page.GradientFill(vertices, pair, GRADIENT_FILL_RECT_V, {});
  page.GradientFill(vertices, triangle, GRADIENT_FILL_TRIANGLE, {});
  EXPECT_EQ(driver_.calls,
            (Calls{"StretchBlt 0,0,2,2 from 0,0,1,2 of 1x2x32 0000ff00/007f7f00, mode 3",
                   "CopyBits 0,1,1,2 from 0,0 of 1x1x32 003f3f00"}));
}

}  // namespace
}  // namespace quillo::host
