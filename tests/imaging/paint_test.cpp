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
#include "imaging/table.h"
#include "support/canvas.h"
#include "support/case_table.h"
#include "support/holdings.h"
#include "support/import_patch.h"
#include "support/line.h"

namespace quillo::imaging {
namespace {

struct Canvas : test::Canvas {
  Canvas() : test::Canvas(16, 16) {}
  [[nodiscard]] COLORREF At(int x, int y) const { return GetPixel(Dc(), x, y); }
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
int WINAPI DeviceCapsOfTest(HDC, int index) {
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

/// A field "x,y=RRGGBB" is a pixel, "RRGGBB=FIRST..LAST" how many pixels of the canvas have a
/// colour.
void ExpectOnCanvas(const Canvas& canvas, const std::string& field, int tolerance) {
  const std::string value = field.substr(field.find('=') + 1);
  int x = 0, y = 0, first = 0, last = 0;
  if (sscanf(field.c_str(), "%d,%d=", &x, &y) == 2) {
    const COLORREF seen = canvas.At(x, y);
    const std::vector<std::byte> wanted = HexBytes(value);
    EXPECT_NEAR(GetRValue(seen), static_cast<int>(wanted[0]), tolerance) << field;
    EXPECT_NEAR(GetGValue(seen), static_cast<int>(wanted[1]), tolerance) << field;
    EXPECT_NEAR(GetBValue(seen), static_cast<int>(wanted[2]), 4 * tolerance) << field;
    return;
  }
  ASSERT_EQ(sscanf(value.c_str(), "%d..%d", &first, &last), 2) << field;
  const auto colour = static_cast<COLORREF>(std::stoul(field, nullptr, 16));
  int count = 0;
  for (int i = 0; i < 256; ++i) count += canvas.At(i % 16, i / 16) == colour;
  EXPECT_TRUE(count >= first && count <= last) << field << ", but " << count;
}

TEST(Paint, EveryCaseOfTheTable_ShowsItsPicture) {
  const std::vector<TableRow> cases = ReadTable("paintings.txt");
  EXPECT_GT(cases.size(), 30u);
  for (const TableRow& c : cases) {
    SCOPED_TRACE(c.fields.at(0));
    SettingsScope settings;
    const TemporaryDirectory directory;
    settings->memory_threshold = 1;
    settings->display_mode = c.Unsigned(6);
    const Canvas canvas;
    SetStretchBltMode(canvas.Dc(), HALFTONE);
    const uintptr_t handles = test::LiveKernelHandles();
    {
      BitmapScope bitmap;
      MakeSubject(c.fields.at(1),
                  {.memory_type = c.Unsigned(4),
                   .bits_per_pixel = c.Unsigned(2),
                   .colour_order = c.Unsigned(3),
                   .view_perspective = c.Unsigned(5)},
                  bitmap);
      const test::ImportPatch patch("GetDeviceCaps", DeviceCapsOfTest);
      device_bits = static_cast<int>(c.Number(7));
      std::optional<RECT> rects[4];
      for (size_t i = 0; i < 4; ++i) rects[i] = RectOf(c.fields.at(8 + i));
      const auto pointer = [&](size_t i) { return rects[i] ? &*rects[i] : nullptr; };
      EXPECT_EQ(Paint(canvas.Dc(), bitmap.Get(), {pointer(0), pointer(1), pointer(2), pointer(3)}),
                kSuccess);
      EXPECT_EQ(bitmap->view_perspective, c.Unsigned(5));  // the caller's bitmap stays
    }
    for (size_t i = 13; i < c.fields.size(); ++i) {
      ExpectOnCanvas(canvas, c.fields[i], static_cast<int>(c.Number(12)));
    }
    EXPECT_EQ(GetStretchBltMode(canvas.Dc()), HALFTONE);
    EXPECT_EQ(directory.Files(), 0);
    EXPECT_EQ(test::LiveKernelHandles(), handles);
  }
}

TEST(CreatePaintPalette, EveryRule_GivesItsColours) {
  const test::ImportPatch patch("GetDeviceCaps", DeviceCapsOfTest);
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
