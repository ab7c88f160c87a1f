#include "imaging/bitmap/bitmap_handle.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <tuple>

#include "imaging/lifecycle/create.h"
#include "imaging/settings_scope.h"
#include "imaging/storage/storage.h"

namespace quillo::imaging {
namespace {

TEST(Init, ArgumentsAndForms_GiveTheirCodes) {
  struct {
    uint32_t form, width, height, bits;
    int result;
  } const cases[] = {
      {kCurrentForm, 0, 0, 0, kSuccess},
      {kOldForm, 0, 0, 0, kSuccess},
      {271, 1, 1, 8, kWrongStructureSize},
      {kCurrentForm, 1, 1, 9, kUnsupportedDepth},
      {kCurrentForm, 1, 1, 0, kUnsupportedDepth},
      {kOldForm, 16384, 0xFFFF0000u / 65536, 32, kSuccess},
      {kOldForm, 1u << 29, 1, 64, kTooLargeForOldForm},
      {kOldForm, 0x8000, 0x8000, 32, kTooLargeForOldForm},
      {kCurrentForm, 0x8000, 0x8000, 32, kSuccess},
      {kCurrentForm, 1u << 29, 1, 64, kInvalidArgument},
  };
  EXPECT_EQ(Init(nullptr, kCurrentForm, 1, 1, 8), kInvalidArgument);
  for (const auto& c : cases) {
    BitmapHandle record{};
    EXPECT_EQ(Init(&record, c.form, c.width, c.height, c.bits), c.result)
        << c.form << ' ' << c.width << 'x' << c.height << 'x' << c.bits;
    const bool keeps_form = c.result != kTooLargeForOldForm && c.result != kWrongStructureSize;
    EXPECT_EQ(record.structure_size, keeps_form ? c.form : 0);
  }
}

TEST(Init, EveryDepthAndTheSettings_FillItsFields) {
  struct {
    uint32_t bits, line, colours, order;
    int32_t high;
  } const cases[] = {{1, 4, 2, 0, 0},    {2, 4, 4, 0, 1},    {7, 8, 128, 0, 6}, {8, 8, 256, 0, 7},
                     {12, 8, 0, 2, 11},  {16, 12, 0, 1, 15}, {24, 16, 0, 1, 7}, {32, 20, 0, 1, -1},
                     {48, 32, 0, 1, 15}, {64, 40, 0, 1, 15}};
  SettingsScope settings;
  settings->process_value = 77;
  settings->y_resolution = 600;
  for (const auto& c : cases) {
    BitmapHandle record{};
    ASSERT_EQ(Init(&record, kCurrentForm, 5, 3, c.bits), kSuccess);
    EXPECT_EQ(std::tuple(record.bytes_per_line, record.data_size, record.large_data_size),
              std::tuple(c.line, c.line * 3, c.line * 3))
        << c.bits;
    EXPECT_EQ(std::tuple(record.colours, record.colour_order, record.high_bit, record.low_bit),
              std::tuple(c.colours, c.order, c.high, c.high))
        << c.bits;
    EXPECT_EQ(std::tuple(record.view_perspective, record.percent, record.x_resolution,
                         record.y_resolution, record.process_value),
              std::tuple(kBottomRowFirst, 100u, 150u, 600u, 77u));
  }
}

TEST(Init, OldForm_TouchesNothingBehindIt) {
  BitmapHandle record;
  std::memset(static_cast<void*>(&record), 0xA5, sizeof(record));
  ASSERT_EQ(
      Create(&record, {.structure_size = kOldForm, .width = 7, .height = 5, .bits_per_pixel = 8}),
      kSuccess);
  Free(&record);
  const auto* bytes = reinterpret_cast<const uint8_t*>(&record);
  EXPECT_TRUE(std::all_of(bytes + kOldForm, bytes + kCurrentForm,
                          [](uint8_t byte) { return byte == 0xA5; }));
  EXPECT_EQ(record.structure_size, kOldForm);
  EXPECT_EQ(record.flags, 0u);
}

TEST(Create, Arguments_GiveTheirCodes) {
  uint8_t data[16];
  const std::pair<BitmapDescription, int> cases[] = {
      {Sized(0, 4, 8), kEmptyData},
      {Sized(0, 4, 8, 3), kEmptyData},
      {Sized(4, 4, 8, 3), kInvalidArgument},
      {{.width = 4, .height = 4, .bits_per_pixel = 24, .colour_order = 5}, kSuccess},
      {{.width = 4, .height = 4, .bits_per_pixel = 16, .colour_order = 5}, kUnsupportedDepth},
      {Sized(4, 4, 8, kMemorySection, 8), kSuccess},
      {Sized(4, 4, 8, kMemorySection, 9), kInvalidArgument},
      {{kCurrentForm, kMemoryCaller, 4, 4, 8, 0, nullptr, 0, data, 16}, kSuccess},
      {{kCurrentForm, kMemoryCaller, 4, 4, 8, 0, nullptr, 0, data, 15}, kInvalidArgument}};
  for (const auto& [description, result] : cases) {
    BitmapHandle record{};
    EXPECT_EQ(Create(&record, description), result);
    EXPECT_EQ((record.flags & kAllocated) != 0, result == kSuccess);
    Free(&record);
    EXPECT_EQ(record.flags, 0u);
  }
}

TEST(Create, Palettes_ComeFromRampCallerOrDefault) {
  const PaletteEntry own[2] = {{1, 2, 3, 0}, {4, 5, 6, 0}};
  BitmapScope ramp, callers, usual;
  ASSERT_EQ(Create(ramp.Get(), {.width = 1, .height = 1, .palette = own}), kSuccess);
  EXPECT_EQ(ramp->bits_per_pixel, 8u);
  EXPECT_EQ(ramp->view_perspective, kTopRowFirst);
  EXPECT_EQ(PaletteOf(*ramp.Get())[77], (PaletteEntry{77, 77, 77, 0}));
  BitmapDescription with_palette = Sized(1, 1, 1);
  with_palette.palette = own;
  ASSERT_EQ(Create(callers.Get(), with_palette), kSuccess);
  EXPECT_EQ(PaletteOf(*callers.Get())[1], own[1]);
  ASSERT_EQ(Create(usual.Get(), Sized(1, 1, 4)), kSuccess);
  EXPECT_TRUE(IsDefaultPalette(PaletteOf(*usual.Get()), 16));
}

TEST(Free, NullAndForeignRecords_AreLeftAlone) {
  Free(nullptr);
  BitmapHandle record{};
  record.structure_size = 100;
  record.flags = kAllocated | kDisk;
  Free(&record);
  EXPECT_EQ(record.flags, kAllocated | kDisk);
}

}  // namespace
}  // namespace quillo::imaging
