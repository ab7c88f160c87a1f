#include "imaging/scaling/resize.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "imaging/dib/convert_dib.h"
#include "imaging/lifecycle/create.h"
#include "imaging/settings_scope.h"
#include "imaging/storage/rows.h"
#include "support/holdings.h"
#include "support/import_patch.h"

namespace quillo::imaging {
namespace {

/// A bitmap of 8-bit rows whose pixels all hold the row's number, counted from 1.
void MakeRows(BitmapHandle* record, uint32_t width, uint32_t height, uint32_t view) {
  ASSERT_EQ(Create(record, Sized(width, height, 8, kMemorySectionElseFile, view)), kSuccess);
  for (uint32_t y = 0; y < height; ++y) {
    const std::vector<std::byte> row(record->bytes_per_line, static_cast<std::byte>(y + 1));
    StoreRow(*record, y, row);
  }
}

std::vector<int> FirstColumn(const BitmapHandle& record) {
  std::vector<int> column;
  std::vector<std::byte> row(record.bytes_per_line);
  for (uint32_t y = 0; y < record.height; ++y) {
    FetchRow(record, y, row);
    column.push_back(static_cast<int>(row[0]));
  }
  return column;
}

class CountingAttachment : public Attachment {
 public:
  int Resize(uint32_t width, uint32_t height) override {
    size = {width, height};
    return result;
  }
  void Release() override { ++released; }
  std::array<uint32_t, 2> size{};
  int released = 0;
  int result = kSuccess;
};

TEST(Resizing, Arguments_GiveTheirCodes) {
  EXPECT_EQ(SizeBitmap(nullptr, 1, 1, 0), kInvalidArgument);
  BitmapHandle empty{};
  Init(&empty, kCurrentForm, 4, 4, 8);
  EXPECT_EQ(SizeBitmap(&empty, 1, 1, 0), kInvalidArgument);
  BitmapScope bitmap;
  MakeRows(bitmap.Get(), 4, 4, 1);
  EXPECT_EQ(SizeBitmap(bitmap.Get(), 0, 4, 0), kInvalidArgument);
  EXPECT_EQ(SizeBitmap(bitmap.Get(), 4, -1, 0), kInvalidArgument);
  const std::byte* storage = bitmap->data_address;
  EXPECT_EQ(SizeBitmap(bitmap.Get(), 4, 4, 0), kSuccess);
  EXPECT_EQ(bitmap->data_address, storage);
  bitmap->structure_size = 100;
  EXPECT_EQ(SizeBitmap(bitmap.Get(), 1, 1, 0), kWrongStructureSize);
  bitmap->structure_size = kCurrentForm;
  BitmapScope colour;
  Create(colour.Get(), Sized(4, 4, 24));
  EXPECT_EQ(ResizeInto(colour.Get(), bitmap.Get(), 0), kInvalidArgument);
  Free(colour.Get());
  EXPECT_EQ(ResizeInto(bitmap.Get(), colour.Get(), 0), kNoStorage);
}

TEST(SizeBitmap, InPlace_KeepsTheRecordsIdentity) {
  for (const uint32_t form : {kCurrentForm, kOldForm}) {
    const uintptr_t handles = test::LiveKernelHandles();
    CountingAttachment attachment;
    BitmapHandle record{};
    const PaletteEntry grey[] = {{9, 9, 9, 0}, {8, 8, 8, 0}};
    ASSERT_EQ(Create(&record, {.structure_size = form,
                               .memory_type = kMemorySectionElseFile,
                               .width = 4,
                               .height = 3,
                               .bits_per_pixel = 1,
                               .palette = grey,
                               .view_perspective = kBottomRowFirst}),
              kSuccess);
    record.attached_object = &attachment;
    record.x_resolution = 333;
    const PaletteEntry* palette = record.palette;
    EXPECT_EQ(SizeBitmap(&record, 8, 7, 0), kSuccess);
    EXPECT_EQ(record.data_size, 28u);
    EXPECT_EQ(record.x_resolution, 333u);
    EXPECT_EQ(record.view_perspective, kBottomRowFirst);
    EXPECT_EQ(record.palette, palette);
    EXPECT_EQ(PaletteOf(record)[1], grey[1]);
    EXPECT_EQ(attachment.size, (std::array{8u, 7u}));
    EXPECT_TRUE(IsValid(record));
    EXPECT_EQ(attachment.released, 0);
    // A refusing attachment leaves all as it was.
    attachment.result = -42;
    EXPECT_EQ(SizeBitmap(&record, 3, 3, 0), -42);
    EXPECT_EQ(record.width, 8u);
    Free(&record);
    EXPECT_EQ(attachment.released, 1);
    EXPECT_EQ(test::LiveKernelHandles(), handles);
  }
}

int StopAtOnce(int, void* user) { return static_cast<int>(reinterpret_cast<intptr_t>(user)); }

TEST(SizeBitmap, StoppingCallback_LeavesTheBitmap) {
  SettingsScope settings;
  const uintptr_t handles = test::LiveKernelHandles();
  BitmapHandle record{};
  MakeRows(&record, 4, 3, 1);
  settings->status = StopAtOnce;
  settings->status_user = reinterpret_cast<void*>(intptr_t{-99});
  EXPECT_EQ(SizeBitmap(&record, 4, 7, 0), -99);
  EXPECT_EQ(FirstColumn(record), (std::vector{1, 2, 3}));
  Free(&record);
  EXPECT_EQ(test::LiveKernelHandles(), handles);
}

TEST(ResizeInto, RowOrders_DecideWhereRowsGo) {
  const std::vector<int> down = {1, 1, 1, 2, 2, 3, 3}, up = {3, 3, 2, 2, 1, 1, 1};
  for (const uint32_t from : {1u, 4u}) {
    for (const uint32_t to : {1u, 4u}) {
      for (const uint32_t type : {1u, 128u}) {  // rows in place, and rows that are stored
        BitmapScope source, target;
        MakeRows(source.Get(), 4, 3, from);
        Create(target.Get(), Sized(4, 7, 8, type, to));
        EXPECT_EQ(ResizeInto(source.Get(), target.Get(), 0), kSuccess);
        EXPECT_EQ(FirstColumn(*target.Get()), from == to ? down : up) << from << ' ' << to;
      }
    }
  }
}

/// Which method ran shows in what becomes of the second column, black among three white ones.
TEST(SizeBitmap, Flags_ChooseTheMethod) {
  struct {
    const char* name;
    uint32_t bits, flags;
    int32_t width;
    uint32_t x;
    int level;  // at x
  } const cases[] = {
      {"none", 24, 0, 2, 0, 255},
      {"area of 24 bits is ignored", 24, 1, 2, 0, 255},
      {"resampling, smaller", 24, 2, 2, 0, 155},  // Mitchell
      {"resampling, larger", 24, 2, 7, 2, 31},
      {"smooth, smaller", 24, 4, 2, 0, 155},
      {"smooth, larger", 24, 4, 7, 2, 3},  // Catmull and Rom
      {"area goes before resampling", 1, 3, 2, 0, 0},
      {"none of 1 bit", 1, 0, 2, 0, 1},
      {"smooth goes before area", 1, 5, 2, 0, 1},
  };
  for (const auto& c : cases) {
    BitmapScope bitmap;
    Create(bitmap.Get(), Sized(4, 1, c.bits, kMemorySectionElseFile));
    std::vector<std::byte> row(bitmap->bytes_per_line, std::byte{0xFF});
    if (c.bits == 1) row[0] = std::byte{0xBF};
    if (c.bits == 24) std::fill_n(&row[3], 3, std::byte{0});
    StoreRow(*bitmap.Get(), 0, row);
    ASSERT_EQ(SizeBitmap(bitmap.Get(), c.width, 1, c.flags), kSuccess) << c.name;
    row.resize(bitmap->bytes_per_line);
    FetchRow(*bitmap.Get(), 0, row);
    EXPECT_EQ(static_cast<int>(c.bits == 1 ? row[0] >> 7 : row[c.x * 3]), c.level) << c.name;
  }
}

constexpr DWORD kYuy2 = 0x32595559;  // "YUY2"

struct PackedDib {
  BITMAPINFOHEADER header;
  RGBQUAD colours[2];
  uint8_t bits[16];
};

/// A screen with 10,000 pixels a metre across and 5,000 down.
int WINAPI ScreenOfTest(HDC, int index) {
  return index == HORZSIZE ? 100 : index == VERTSIZE ? 200 : 1000;
}

TEST(ConvertFromDib, HeaderFields_GoIntoTheRecord) {
  struct {
    LONG height;
    DWORD compression;
    WORD bits;
    uint32_t view, result_bits;
    LONG x_per_metre, y_per_metre;
    uint32_t x_dpi, y_dpi;
  } const cases[] = {{4, BI_RGB, 1, kBottomRowFirst, 1, 3780, 23622, 96, 600},
                     {-4, BI_RGB, 1, kTopRowFirst, 1, 0, 23622, 254, 600},
                     {2, kYuy2, 16, kTopRowFirst, 24, 3780, 0, 96, 127},
                     {-2, kYuy2, 16, kBottomRowFirst, 24, 0, 0, 254, 127}};
  const test::ImportPatch patch("GetDeviceCaps", ScreenOfTest);
  enum Form { kSized, kPointers, kDescribed };
  for (const auto& c : cases) {
    PackedDib dib{};
    dib.header = {sizeof(dib.header), 4, c.height, 1, c.bits, c.compression, 0, c.x_per_metre,
                  c.y_per_metre,      0, 0};
    dib.colours[1] = {1, 2, 3, 0};
    dib.bits[0] = 0x50;
    const Bytes header = std::as_bytes(std::span(&dib, 1)).first(48);
    const Bytes bits = std::as_bytes(std::span(dib.bits));
    for (const Form form : {kSized, kPointers, kDescribed}) {
      SCOPED_TRACE(std::to_string(c.height) + ", form " + std::to_string(form));
      BitmapScope record;
      ASSERT_EQ(form == kPointers ? ConvertFromDib(record.Get(), kCurrentForm, &dib, dib.bits)
                                  : ConvertFromDib(record.Get(), kCurrentForm, header,
                                                   form == kSized ? bits : Bytes{}),
                kSuccess);
      EXPECT_EQ(record->width, 4u);
      EXPECT_EQ(record->view_perspective, c.view);
      EXPECT_EQ(record->bits_per_pixel, c.result_bits);
      EXPECT_EQ(record->colours, c.result_bits == 1 ? 2u : 0u);
      EXPECT_EQ(record->colour_order, c.result_bits > 8 ? kOrderColour : kOrderPalette);
      EXPECT_EQ(record->x_resolution, c.x_dpi);
      EXPECT_EQ(record->y_resolution, c.y_dpi);
      EXPECT_EQ(record->flags == 0, form == kDescribed);
      if (c.result_bits == 1 && form != kDescribed) {
        EXPECT_EQ(PaletteOf(*record.Get())[1], (PaletteEntry{1, 2, 3, 0}));
        EXPECT_EQ(FirstColumn(*record.Get()), (std::vector{0x50, 0, 0, 0}));
      }
    }
  }
}

TEST(ConvertFromDib, BadInput_GivesItsCodeAndHoldsNothing) {
  constexpr DWORD kJpeg = 0x47504A4D;  // "MJPG": described, but not converted
  struct {
    uint32_t form;
    LONG width, height;
    WORD bits;
    DWORD compression;
    int result;
    uint32_t described_width;
  } const cases[] = {{270, 4, 4, 24, BI_RGB, kWrongStructureSize, 0},
                     {kCurrentForm, 4, 4, 24, 77, kUnsupportedFormat, 0},
                     {kCurrentForm, 4, 4, 24, kJpeg, kUnsupportedFormat, 4},
                     {kCurrentForm, 4, 5, 24, BI_RGB, kInvalidArgument, 4},
                     {kCurrentForm, INT32_MAX, INT32_MIN, 64, BI_RGB, kInvalidArgument, 0},
                     {kCurrentForm, INT32_MAX, INT32_MAX, 8, BI_RLE8, kOutOfMemory, 0},
                     {kOldForm, 100000, 100000, 24, BI_RGB, kTooLargeForOldForm, 0},
                     {kCurrentForm, 4, 0, 24, BI_RGB, kEmptyData, 0}};
  const std::vector<std::byte> bits(48);
  for (const auto& c : cases) {
    SettingsScope settings;
    wcscpy_s(settings->temporary_directory, L"Z:\\no\\such\\directory");
    const uintptr_t handles = test::LiveKernelHandles();
    SCOPED_TRACE(std::to_string(&c - cases));
    const BITMAPINFOHEADER header = {
        sizeof(header), c.width, c.height, 1, c.bits, c.compression, 0, 0, 0, 0, 0};
    BitmapHandle record{};
    EXPECT_EQ(ConvertFromDib(&record, c.form, std::as_bytes(std::span(&header, 1)), bits),
              c.result);
    EXPECT_EQ(record.flags & kAllocated, 0u);
    EXPECT_EQ(record.lookup8, nullptr);
    EXPECT_TRUE(c.described_width == 0 || record.width == c.described_width);
    EXPECT_EQ(test::LiveKernelHandles(), handles);
  }
  EXPECT_EQ(ConvertFromDib(nullptr, kCurrentForm, bits, bits), kInvalidArgument);
}

}  // namespace
}  // namespace quillo::imaging
