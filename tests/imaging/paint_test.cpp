#include "imaging/painting/paint.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

#include "base/gdi_owners.h"
#include "imaging/lifecycle/create.h"
#include "imaging/painting/device_colours.h"
#include "imaging/painting/display_mode.h"
#include "imaging/painting/paint_method.h"
#include "imaging/settings_scope.h"
#include "imaging/storage/rows.h"
#include "support/canvas.h"
#include "support/holdings.h"
#include "support/import_patch.h"

namespace quillo::imaging {
namespace {

struct Canvas : test::Canvas {
  Canvas() : test::Canvas(16, 16) {}
  [[nodiscard]] COLORREF At(int x, int y) const { return GetPixel(Dc(), x, y); }
};

/// 4 x 4 pixels in 24 bits; the pixel at x, y has red x * 60 and green y * 60.
void MakeGradient(BitmapHandle* record, uint32_t memory_type, uint32_t view, void* data,
                  uint32_t bits = 24, uint32_t order = 1) {
  ASSERT_EQ(Create(record, {.memory_type = memory_type,
                            .width = 4,
                            .height = 4,
                            .bits_per_pixel = bits,
                            .colour_order = order,
                            .view_perspective = view,
                            .caller_data = data,
                            .caller_data_size = data != nullptr ? 4 * 4 * bits / 8 : 0}),
            kSuccess);
  for (uint32_t y = 0; y < 4; ++y) {
    std::vector<Colour16> colours(4);
    for (uint32_t x = 0; x < 4; ++x) {
      const auto red = static_cast<uint16_t>(x * 60 * 257);
      colours[x] = {0, static_cast<uint16_t>(y * 60 * 257), red, 0};
    }
    std::vector<std::byte> row(record->bytes_per_line);
    EncodeRow(FormatOf(*record), colours, row.data());
    StoreRow(*record, view == kBottomRowFirst ? 3 - y : y, row);
  }
}

int device_bits = 32;
int device_technology = DT_RASDISPLAY;

/// Stands for devices of any depth: the painter asks GetDeviceCaps alone.
int WINAPI DeviceCapsOfTest(HDC, int index) {
  return index == TECHNOLOGY ? device_technology : index == BITSPIXEL ? device_bits : 1;
}

constexpr RECT kAt22 = {2, 2, 6, 6};
constexpr COLORREF kWhite = RGB(255, 255, 255);

TEST(SetDisplayMode, Flags_ChangeWithinTheMask) {
  SettingsScope settings;
  settings->display_mode = 0x108;
  settings->display_table[5] = 0;
  EXPECT_EQ(SetDisplayMode(0x25, 0xFF21), 0x108u);
  EXPECT_EQ(settings->display_mode, 0x129u);
  EXPECT_EQ(settings->display_table[5], 0u);
  EXPECT_EQ(SetDisplayMode(0xFFFFFFFF, 0x4), 0x129u);
  EXPECT_EQ(settings->display_table[5], 5u);
  settings->display_table[5] = 9;
  EXPECT_EQ(SetDisplayMode(0x4, 0x4), 0x4u);
  EXPECT_EQ(settings->display_table[5], 9u);  // it was set before
}

TEST(Paint, Arguments_GiveTheirCodes) {
  const Canvas canvas;
  BitmapScope bitmap;
  const auto paint = [&](HDC dc, const RECT* to) {
    return Paint(dc, bitmap.Get(), {.destination = to});
  };
  EXPECT_EQ(Paint(canvas.Dc(), nullptr, {.destination = &kAt22}), kInvalidArgument);
  EXPECT_EQ(paint(canvas.Dc(), &kAt22), kNoStorage);
  MakeGradient(bitmap.Get(), 1, 1, nullptr);
  EXPECT_EQ(paint(nullptr, &kAt22), kInvalidArgument);
  EXPECT_EQ(paint(canvas.Dc(), nullptr), kInvalidArgument);
  bitmap->width = 100;
  EXPECT_EQ(paint(canvas.Dc(), &kAt22), kInvalidBitmap);
  bitmap->width = 4;
  bitmap->structure_size = 1;
  EXPECT_EQ(paint(canvas.Dc(), &kAt22), kWrongStructureSize);
  bitmap->structure_size = kCurrentForm;
}

TEST(Paint, EveryStorageAndFormat_ShowsTheSamePicture) {
  std::vector<std::byte> data(4 * 4 * 8);
  struct {
    uint32_t type, view, bits, order;
    int tolerance;
  } const cases[] = {{1, 1, 24, 1, 0}, {1, 4, 24, 1, 0}, {128, 1, 24, 1, 0}, {128, 4, 24, 1, 0},
                     {4, 4, 24, 1, 0}, {2, 1, 24, 1, 0}, {1, 1, 24, 0, 0},   {1, 1, 24, 5, 0},
                     {1, 1, 32, 1, 0}, {1, 1, 16, 1, 8}, {1, 4, 48, 1, 0},   {1, 1, 64, 1, 0},
                     {2, 1, 48, 1, 0}, {1, 1, 8, 0, 64}, {1, 4, 7, 0, 64}};
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.bits) + " bits of type " + std::to_string(c.type));
    SettingsScope settings;
    const TemporaryDirectory directory;
    settings->memory_threshold = 1;
    const Canvas canvas;
    const uintptr_t handles = test::LiveKernelHandles();
    BitmapHandle bitmap{};
    MakeGradient(&bitmap, c.type, c.view, c.type == 2 ? data.data() : nullptr, c.bits, c.order);
    ASSERT_EQ(Paint(canvas.Dc(), &bitmap, {.destination = &kAt22}), kSuccess);
    for (int y = 0; y < 4; ++y) {
      for (int x = 0; x < 4; ++x) {
        const COLORREF colour = canvas.At(2 + x, 2 + y);
        ASSERT_NEAR(GetRValue(colour), x * 60, c.tolerance) << x << ',' << y;
        ASSERT_NEAR(GetGValue(colour), y * 60, c.tolerance) << x << ',' << y;
      }
    }
    EXPECT_EQ(canvas.At(6, 6), kWhite);
    Free(&bitmap);
    EXPECT_EQ(directory.Files(), 0);
    EXPECT_EQ(test::LiveKernelHandles(), handles);
  }
}

TEST(Paint, Rectangles_AreClippedAndScaled) {
  BitmapScope bitmap;
  MakeGradient(bitmap.Get(), 1, 4, nullptr);
  const auto colour = [](int x, int y) { return RGB(x * 60, y * 60, 0); };
  using Rect = std::optional<RECT>;
  const RECT whole = {0, 0, 4, 4}, part = {1, 2, 3, 4}, beyond = {3, 3, 9, 9},
             outside = {4, 4, 8, 8}, corner = {2, 2, 9, 9}, first = {0, 0, 2, 2},
             large = {0, 0, 8, 8}, canvas_size = {0, 0, 16, 16}, elsewhere = {8, 8, 16, 16};
  struct {
    const char* name;
    Rect source, source_clip;
    RECT to;
    Rect clip;
    COLORREF at_0_0, at_7_7;
  } const cases[] = {
      {"twice as large", {}, {}, large, {}, colour(0, 0), colour(3, 3)},
      {"a part", part, {}, large, {}, colour(1, 2), colour(2, 3)},
      {"a clipped part", whole, corner, large, {}, colour(2, 2), colour(3, 3)},
      {"beyond the bitmap", beyond, {}, large, {}, colour(3, 3), colour(3, 3)},
      {"source clipped away", first, corner, large, {}, kWhite, kWhite},
      {"outside the bitmap", outside, {}, large, {}, kWhite, kWhite},
      {"destination clipped away", {}, {}, large, elsewhere, kWhite, kWhite},
      {"destination clipped", {}, {}, canvas_size, large, colour(0, 0), colour(3, 3)},
  };
  const auto pointer = [](const Rect& rect) { return rect ? &*rect : nullptr; };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const Canvas canvas;
    SetStretchBltMode(canvas.Dc(), HALFTONE);
    EXPECT_EQ(Paint(canvas.Dc(), bitmap.Get(),
                    {.source = pointer(c.source),
                     .source_clip = pointer(c.source_clip),
                     .destination = &c.to,
                     .destination_clip = pointer(c.clip)}),
              kSuccess);
    EXPECT_EQ(canvas.At(0, 0), c.at_0_0);
    EXPECT_EQ(canvas.At(7, 7), c.at_7_7);
    EXPECT_EQ(canvas.At(9, 9), kWhite);
    EXPECT_EQ(GetStretchBltMode(canvas.Dc()), HALFTONE);
  }
}

TEST(Paint, SwappedAxes_TakeRowsAlongX) {
  BitmapScope bitmap;
  ASSERT_EQ(Create(bitmap.Get(), {.width = 4,
                                  .height = 2,
                                  .bits_per_pixel = 24,
                                  .colour_order = kOrderColour,
                                  .view_perspective = 6}),
            kSuccess);
  std::vector<std::byte> row(12);
  row[0] = std::byte{255};  // blue; row 0, column 0 is seen at the top right
  StoreRow(*bitmap.Get(), 0, row);
  const Canvas canvas;
  const RECT to = {0, 0, 2, 4};
  EXPECT_EQ(Paint(canvas.Dc(), bitmap.Get(), {.destination = &to}), kSuccess);
  EXPECT_EQ(canvas.At(1, 0), RGB(0, 0, 255));
  EXPECT_EQ(canvas.At(0, 0), RGB(0, 0, 0));
  EXPECT_EQ(canvas.At(1, 3), RGB(0, 0, 0));
  EXPECT_EQ(canvas.At(2, 0), kWhite);
  EXPECT_EQ(bitmap->view_perspective, 6u);  // the caller's bitmap stays
}

/// 8 x 8, 1 bit; only the pixel at 2, 2 is black. `inverted` swaps both palette and bits.
void MakeDot(BitmapHandle* record, bool inverted) {
  PaletteEntry palette[2] = {};
  palette[inverted ? 0 : 1] = {255, 255, 255, 0};
  ASSERT_EQ(Create(record, {.width = 8, .height = 8, .bits_per_pixel = 1, .palette = palette}),
            kSuccess);
  for (uint32_t y = 0; y < 8; ++y) {
    const uint8_t bits = y == 2 ? 0xDF : 0xFF;
    const std::byte row[4] = {static_cast<std::byte>(inverted ? ~bits : bits)};
    StoreRow(*record, y, row);
  }
}

TEST(Paint, OneBitMethods_KeepDotsTheirOwnWay) {
  struct {
    uint32_t mode;
    LONG size;
    int dot_x;  // where the dot is expected
    COLORREF dot;
  } const cases[] = {{kModeGreyScale, 4, 1, RGB(191, 191, 191)},
                     {kModeGreyScale, 16, 5, 0},
                     {kModeTwoColours, 8, 2, 0},
                     {kModeTwoColours, 2, 0, 0},
                     {kModeTwoColours, 16, 5, 0}};
  for (const auto& c : cases) {
    for (const bool inverted : {false, true}) {
      SCOPED_TRACE(std::to_string(c.mode) + " to " + std::to_string(c.size));
      SettingsScope settings;
      settings->display_mode = c.mode;
      const Canvas canvas;
      BitmapScope bitmap;
      MakeDot(bitmap.Get(), inverted);
      const RECT to = {0, 0, c.size, c.size};
      ASSERT_EQ(Paint(canvas.Dc(), bitmap.Get(), {.destination = &to}), kSuccess);
      EXPECT_EQ(canvas.At(c.dot_x, c.dot_x), c.dot) << inverted;
      EXPECT_EQ(canvas.At(c.size - 1, c.size - 1), kWhite) << inverted;
    }
  }
}

TEST(Paint, MirroredEnlargement_HasNoGreysBetween) {
  SettingsScope settings;
  settings->display_mode = kModeGreyScale;
  const Canvas canvas;
  BitmapScope bitmap;
  MakeDot(bitmap.Get(), false);
  const RECT to = {12, 12, 0, 0};
  ASSERT_EQ(Paint(canvas.Dc(), bitmap.Get(), {.destination = &to}), kSuccess);
  int black = 0, white = 0;
  for (int i = 0; i < 256; ++i) {
    black += canvas.At(i % 16, i / 16) == 0;
    white += canvas.At(i % 16, i / 16) == kWhite;
  }
  EXPECT_GT(black, 0);
  EXPECT_EQ(black + white, 256);
}

TEST(Paint, FewColours_AreDitheredToTheirMean) {
  SettingsScope settings;
  settings->display_mode = kModeDither;
  BitmapScope bitmap;
  ASSERT_EQ(Create(bitmap.Get(),
                   {.width = 1, .height = 1, .bits_per_pixel = 24, .colour_order = kOrderColour}),
            kSuccess);
  const std::vector<std::byte> grey(4, std::byte{64});
  StoreRow(*bitmap.Get(), 0, grey);
  const Canvas canvas;
  const test::ImportPatch patch("GetDeviceCaps", DeviceCapsOfTest);
  device_bits = 1;
  const RECT to = {0, 0, 16, 16};
  ASSERT_EQ(Paint(canvas.Dc(), bitmap.Get(), {.destination = &to}), kSuccess);
  int white = 0;
  for (int i = 0; i < 256; ++i) white += canvas.At(i % 16, i / 16) == 0xFFFFFF;
  EXPECT_NEAR(white, 64, 6);  // a quarter of 256 pixels
}

std::vector<PALETTEENTRY> EntriesOf(HPALETTE handle) {
  const Palette palette(handle);
  if (!palette) return {};
  std::vector<PALETTEENTRY> entries(GetPaletteEntries(palette.Get(), 0, 0, nullptr));
  GetPaletteEntries(palette.Get(), 0, static_cast<UINT>(entries.size()), entries.data());
  return entries;
}

TEST(CreatePaintPalette, EveryRule_GivesItsColours) {
  struct {
    const char* name;
    uint32_t bits, order, mode;
    int device_bits;
    size_t colours, index;
    COLORREF colour;
  } const cases[] = {
      {"dither to 8 bits, cube", 24, 1, 0x108, 8, 256, 43, RGB(0x33, 0x33, 0x33)},
      {"dither to 8 bits", 24, 1, 0x008, 8, 256, 43, RGB(0x24, 0x49, 0xFF)},
      {"dither to 4 bits", 24, 1, 0x008, 4, 16, 9, RGB(255, 0, 0)},
      {"dither to 1 bit", 24, 1, 0x008, 1, 2, 1, RGB(255, 255, 255)},
      {"grey levels of 1 bit", 1, 0, 0x010, 32, 256, 77, RGB(77, 77, 77)},
      {"own palette", 4, 0, 0, 32, 16, 9, RGB(255, 0, 0)},
      {"grey above 8 bits", 16, 2, 0, 32, 256, 200, RGB(200, 200, 200)},
      {"none", 24, 1, 0, 32, 0, 0, 0},
  };
  for (const auto& c : cases) {
    SettingsScope settings;
    settings->display_mode = c.mode;
    const Canvas canvas;
    const test::ImportPatch patch("GetDeviceCaps", DeviceCapsOfTest);
    device_bits = c.device_bits;
    BitmapScope bitmap;
    Create(bitmap.Get(),
           {.width = 4, .height = 4, .bits_per_pixel = c.bits, .colour_order = c.order});
    const auto entries = EntriesOf(CreatePaintPalette(canvas.Dc(), bitmap.Get()));
    ASSERT_EQ(entries.size(), c.colours) << c.name;
    if (c.colours == 0) continue;
    const PALETTEENTRY& entry = entries[c.index];
    EXPECT_EQ(RGB(entry.peRed, entry.peGreen, entry.peBlue), c.colour) << c.name;
    EXPECT_EQ(entry.peFlags, 0) << c.name;
  }
  EXPECT_EQ(CreatePaintPalette(nullptr, nullptr), nullptr);
}

TEST(DeviceDepth, MetafilesAndNoDevice_Have24Bits) {
  const Canvas canvas;
  const test::ImportPatch patch("GetDeviceCaps", DeviceCapsOfTest);
  device_bits = 4;
  EXPECT_EQ(DeviceDepth(canvas.Dc()), 4u);
  EXPECT_EQ(DeviceDepth(nullptr), 24u);
  device_technology = DT_METAFILE;
  EXPECT_EQ(DeviceDepth(canvas.Dc()), 24u);
  device_technology = DT_RASDISPLAY;
}

}  // namespace
}  // namespace quillo::imaging
