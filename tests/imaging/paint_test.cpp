#include "imaging/painting/paint.h"

#include <gtest/gtest.h>
#include <iomanip>
#include <optional>
#include <sstream>
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
#include "support/case_table.h"
#include "support/holdings.h"
#include "support/line.h"
#include "support/watch.h"

namespace quillo::imaging {
namespace {

struct Canvas : test::Canvas {
  Canvas() : test::Canvas(16, 16) {}
};

/// What the tables paint: "gradient", 4 x 4, whose pixel at x, y has red x * 60 and green y * 60;
/// "swapped", 4 x 2 seen as 2 x 4, black but for blue at the top right; "dot", 8 x 8 white but for
/// black at 2, 2, and "inverse-dot" with bits and palette exchanged.
void MakeSubject(const std::string& kind, BitmapDescription description, BitmapScope& record) {
  const bool inverse = kind == "inverse-dot", dot = inverse || kind == "dot";
  PaletteEntry black_white[2] = {};
  black_white[inverse ? 0 : 1] = {255, 255, 255, 0};
  description.width = dot ? 8 : 4;
  description.height = dot ? 8 : kind == "swapped" ? 2 : 4;
  description.palette = dot ? black_white : nullptr;
  if (description.memory_type == kMemoryCaller) {
    static std::byte data[4 * 4 * 8];
    description.caller_data = data;
    description.caller_data_size = 2 * description.bits_per_pixel;
  }
  ASSERT_EQ(Create(record.Get(), description), kSuccess);
  const bool bottom_up = description.view_perspective == kBottomRowFirst;
  for (uint32_t y = 0; y < description.height; ++y) {
    std::vector<Colour16> colours(description.width);
    for (uint32_t x = 0; x < description.width; ++x) {
      const auto level = [](uint32_t value) { return static_cast<uint16_t>(value * 257); };
      const uint16_t grey = level(x == 2 && y == 2 ? 0 : 255);
      colours[x] = kind == "gradient" ? Colour16{0, level(y * 60), level(x * 60), 0}
                   : dot              ? Colour16{grey, grey, grey, 0}
                                      : Colour16{level(x + y == 0 ? 255 : 0), 0, 0, 0};
    }
    std::vector<std::byte> row(record->bytes_per_line);
    EncodeRow(FormatOf(*record.Get()), colours, row.data());
    StoreRow(*record.Get(), bottom_up ? description.height - 1 - y : y, row);
  }
}

int device_bits = 32;
int device_technology = DT_RASDISPLAY;

/// Stands for devices of any depth: the painter asks GetDeviceCaps alone.
int DeviceCapsOfTest(HDC, int index) {
  return index == TECHNOLOGY ? device_technology : index == BITSPIXEL ? device_bits : 1;
}

constexpr RECT kAt22 = {2, 2, 6, 6};

TEST(SetDisplayMode, Flags_ChangeWithinTheMask) {
  SettingsScope settings;
  settings->display_mode = kModeColourCube | kModeDither;
  settings->display_table[5] = 0;
  EXPECT_EQ(SetDisplayMode(kModePage | kModeResetTable, 0xFF00 | kModePage),
            kModeColourCube | kModeDither);
  EXPECT_EQ(settings->display_mode, kModeColourCube | kModeDither | kModePage);
  EXPECT_EQ(settings->display_table[5], 0u);
  SetDisplayMode(0xFFFFFFFF, kModeResetTable);
  EXPECT_EQ(settings->display_table[5], 5u);
  settings->display_table[5] = 9;
  EXPECT_EQ(SetDisplayMode(kModeResetTable, kModeResetTable), kModeResetTable);
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
  MakeSubject("gradient", Sized(4, 4, 24), bitmap);
  EXPECT_EQ(paint(nullptr, &kAt22), kInvalidArgument);
  EXPECT_EQ(paint(canvas.Dc(), nullptr), kInvalidArgument);
  bitmap->width = 100;
  EXPECT_EQ(paint(canvas.Dc(), &kAt22), kInvalidBitmap);
  bitmap->width = 4;
  bitmap->structure_size = 1;
  EXPECT_EQ(paint(canvas.Dc(), &kAt22), kWrongStructureSize);
  bitmap->structure_size = kCurrentForm;
}

std::optional<RECT> RectOf(const std::string& text) {
  RECT r;
  const int read = sscanf(text.c_str(), "%ld,%ld,%ld,%ld", &r.left, &r.top, &r.right, &r.bottom);
  return read == 4 ? std::optional(r) : std::nullopt;
}

/// A word "x,y" asks for a pixel, a colour for the number of its pixels.
std::string Seen(const Canvas& canvas, const std::string& asked) {
  std::istringstream words(asked);
  std::ostringstream seen;
  for (std::string word; words >> word;) {
    int x = 0, y = 0, count = 0;
    seen << (seen.tellp() == 0 ? "" : " ");
    if (sscanf(word.c_str(), "%d,%d", &x, &y) == 2) {
      seen << std::hex << std::setw(6) << std::setfill('0') << canvas.Pixel(x, y) << std::dec;
    } else {
      const auto colour = static_cast<uint32_t>(std::stoul(word, nullptr, 16));
      for (int i = 0; i < 256; ++i) count += canvas.Pixel(i % 16, i / 16) == colour;
      seen << count;
    }
  }
  return seen.str();
}

TEST(Paint, EveryCaseOfTheTable_ShowsItsPicture) {
  test::CheckCases("imaging/paintings.txt", [](const auto& fields) {
    SCOPED_TRACE(fields[0]);
    SettingsScope settings;
    const TemporaryDirectory directory;
    settings->memory_threshold = 1;
    const Canvas canvas;
    SetStretchBltMode(canvas.Dc(), HALFTONE);
    const uintptr_t handles = test::LiveKernelHandles();
    {
      std::string subject;
      BitmapDescription d;
      test::Scan(fields[1], subject, d.bits_per_pixel, d.colour_order, d.memory_type,
                 d.view_perspective, settings->display_mode, device_bits);
      BitmapScope bitmap;
      MakeSubject(subject, d, bitmap);
      const WATCH(GetDeviceCaps) caps(DeviceCapsOfTest);
      std::optional<RECT> rects[4];
      for (size_t i = 0; i < 4; ++i) rects[i] = RectOf(fields[2 + i]);
      const auto pointer = [&](size_t i) { return rects[i] ? &*rects[i] : nullptr; };
      EXPECT_EQ(Paint(canvas.Dc(), bitmap.Get(), {pointer(0), pointer(1), pointer(2), pointer(3)}),
                kSuccess);
      EXPECT_EQ(bitmap->view_perspective, d.view_perspective);  // the caller's bitmap stays
    }
    EXPECT_EQ(GetStretchBltMode(canvas.Dc()), HALFTONE);
    EXPECT_EQ(directory.Files(), 0);
    EXPECT_EQ(test::LiveKernelHandles(), handles);
    return Seen(canvas, fields[6]);
  });
}

TEST(CreatePaintPalette, EveryRule_GivesItsColours) {
  const WATCH(GetDeviceCaps) caps(DeviceCapsOfTest);
  const Canvas canvas;
  test::CheckCases("imaging/paint_palettes.txt", [&canvas](const auto& fields) -> std::string {
    SettingsScope settings;
    BitmapDescription d = {.width = 4, .height = 4};
    UINT index = 0;
    test::Scan(fields[1], d.bits_per_pixel, d.colour_order, settings->display_mode, device_bits,
               index);
    BitmapScope bitmap;
    Create(bitmap.Get(), d);
    const Palette palette(CreatePaintPalette(canvas.Dc(), bitmap.Get()));
    PALETTEENTRY e = {};
    if (GetPaletteEntries(palette.Get(), index, 1, &e) == 0) return "none";
    return test::Line(GetPaletteEntries(palette.Get(), 0, 0, nullptr), ", ", int{e.peRed}, ' ',
                      int{e.peGreen}, ' ', int{e.peBlue}, ' ', int{e.peFlags});
  });
  EXPECT_EQ(CreatePaintPalette(nullptr, nullptr), nullptr);
}

TEST(DeviceDepth, MetafilesAndNoDevice_Have24Bits) {
  const Canvas canvas;
  const WATCH(GetDeviceCaps) caps(DeviceCapsOfTest);
  device_bits = 4;
  EXPECT_EQ(DeviceDepth(canvas.Dc()), 4u);
  EXPECT_EQ(DeviceDepth(nullptr), 24u);
  device_technology = DT_METAFILE;
  EXPECT_EQ(DeviceDepth(canvas.Dc()), 24u);
  device_technology = DT_RASDISPLAY;
}

}  // namespace
}  // namespace quillo::imaging
