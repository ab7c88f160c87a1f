#include "imaging/bitmap/bitmap_handle.h"

#include <algorithm>
#include <gtest/gtest.h>

#include "imaging/lifecycle/create.h"
#include "imaging/settings_scope.h"
#include "imaging/storage/storage.h"
#include "support/case_table.h"
#include "support/line.h"

namespace quillo::imaging {
namespace {

TEST(Init, FormsSizesAndDepths_FillTheFieldsOrAreRefused) {
  SettingsScope settings;
  settings->process_value = 77;
  settings->y_resolution = 600;
  test::CheckCases("imaging/init.txt", [](const auto& fields) {
    uint32_t form, width, height, bits;
    test::Scan(fields[0], form, width, height, bits);
    BitmapHandle r{};
    const int result = Init(&r, form, width, height, bits);
    return test::Line(result, ' ', r.structure_size, ", ", r.bytes_per_line, ' ', r.data_size, ' ',
                      r.large_data_size, ", ", r.colours, ' ', r.colour_order, ' ', r.high_bit, ' ',
                      r.low_bit, ", ", r.view_perspective, ' ', r.percent, ' ', r.x_resolution, ' ',
                      r.y_resolution, ' ', r.process_value);
  });
  EXPECT_EQ(Init(nullptr, kCurrentForm, 1, 1, 8), kInvalidArgument);
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
  test::CheckCases("imaging/create.txt", [&data](const auto& fields) {
    BitmapDescription d = {.width = 4, .height = 4};
    test::Scan(fields[0], d.memory_type, d.width, d.bits_per_pixel, d.colour_order,
               d.view_perspective, d.caller_data_size);
    if (d.caller_data_size != 0) d.caller_data = data;
    BitmapHandle record{};
    const int result = Create(&record, d);
    EXPECT_EQ((record.flags & kAllocated) != 0, result == kSuccess);
    Free(&record);
    EXPECT_EQ(record.flags, 0u);
    return std::to_string(result);
  });
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
