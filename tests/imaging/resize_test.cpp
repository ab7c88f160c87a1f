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
#include "imaging/storage/section.h"
#include "support/case_table.h"
#include "support/holdings.h"
#include "support/line.h"
#include "support/watch.h"

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
  EXPECT_EQ(ResizeInto(nullptr, bitmap.Get(), 0), kInvalidArgument);
  EXPECT_EQ(ResizeInto(bitmap.Get(), nullptr, 0), kInvalidArgument);
  const std::byte* storage = bitmap->data_address;
  EXPECT_EQ(SizeBitmap(bitmap.Get(), 4, 4, 0), kSuccess);
  EXPECT_EQ(bitmap->data_address, storage);
  bitmap->structure_size = 100;
  EXPECT_EQ(SizeBitmap(bitmap.Get(), 1, 1, 0), kWrongStructureSize);
  bitmap->structure_size = kCurrentForm;
  BitmapScope colour, deeper, other_order;
  Create(colour.Get(), Sized(4, 4, 24));
  Create(deeper.Get(), Sized(4, 4, 32));
  Create(other_order.Get(), Sized(4, 4, 24));
  other_order->colour_order = kOrderGrey;
  for (BitmapScope* unlike : {&deeper, &other_order}) {
    EXPECT_EQ(ResizeInto(colour.Get(), unlike->Get(), 0), kInvalidArgument);
  }
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
  test::CheckCases("imaging/resize_flags.txt", [](const auto& fields) {
    uint32_t bits = 0, flags = 0, x = 0;
    int32_t width = 0;
    test::Scan(fields[1], bits, flags, width, x);
    BitmapScope bitmap;
    Create(bitmap.Get(), Sized(4, 1, bits, kMemorySectionElseFile));
    std::vector<std::byte> row(bitmap->bytes_per_line, std::byte{0xFF});
    if (bits == 1) row[0] = std::byte{0xBF};
    if (bits == 24) std::fill_n(&row[3], 3, std::byte{0});
    StoreRow(*bitmap.Get(), 0, row);
    EXPECT_EQ(SizeBitmap(bitmap.Get(), width, 1, flags), kSuccess);
    row.resize(bitmap->bytes_per_line);
    FetchRow(*bitmap.Get(), 0, row);
    return std::to_string(static_cast<int>(bits == 1 ? row[0] >> 7 : row[x * 3]));
  });
}

struct PackedDib {
  BITMAPINFOHEADER header = {sizeof header, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0};
  RGBQUAD colours[2] = {{}, {1, 2, 3, 0}};
  uint8_t bits[48] = {0x50};
};

std::string FieldsOf(BitmapHandle& r) {
  return test::Line(r.width, ' ', r.view_perspective, ' ', r.bits_per_pixel, ' ', r.colours, ' ',
                    r.colour_order, ' ', r.x_resolution, ' ', r.y_resolution);
}

TEST(ConvertFromDib, HeaderFields_GoIntoTheRecordOrAreRefused) {
  // A screen with 10,000 pixels a metre across and 5,000 down.
  const WATCH(GetDeviceCaps) screen([](HDC, int index) {
    return index == HORZSIZE ? 100 : index == VERTSIZE ? 200 : 1000;
  });
  SettingsScope settings;
  wcscpy_s(settings->temporary_directory, L"Z:\\no\\such\\directory");
  test::CheckCases("imaging/convert_dib.txt", [](const auto& fields) {
    PackedDib dib;
    uint32_t form = 0;
    test::Scan(fields[0], form, dib.header.biWidth, dib.header.biHeight, dib.header.biBitCount,
               dib.header.biCompression, dib.header.biXPelsPerMeter, dib.header.biYPelsPerMeter);
    const Bytes header = std::as_bytes(std::span(&dib, 1)).first(48);
    const Bytes bits = std::as_bytes(std::span(dib.bits));
    DropSpareSection();
    const uintptr_t handles = test::LiveKernelHandles();
    std::string outcome;
    {
      BitmapScope record, described;
      const int result = ConvertFromDib(record.Get(), form, header, bits);
      outcome = test::Line(result, ", ", FieldsOf(*record.Get()));
      EXPECT_EQ((record->flags & kAllocated) != 0, result == kSuccess) << fields[0];
      EXPECT_EQ(record->lookup8 != nullptr, result == kSuccess) << fields[0];
      if (result == kSuccess) {
        ConvertFromDib(described.Get(), form, header, {});
        EXPECT_EQ(described->flags, 0u);
        EXPECT_EQ(FieldsOf(*described.Get()), FieldsOf(*record.Get()));
        BitmapScope pointers;
        EXPECT_EQ(ConvertFromDib(pointers.Get(), form, &dib, dib.bits), kSuccess);
        EXPECT_EQ(FieldsOf(*pointers.Get()), FieldsOf(*record.Get()));
        for (BitmapHandle* converted : {record.Get(), pointers.Get()}) {
          if (converted->colours == 0) continue;
          EXPECT_EQ(PaletteOf(*converted)[1], (PaletteEntry{1, 2, 3, 0}));
          EXPECT_EQ(FirstColumn(*converted), (std::vector{0x50, 0, 0, 0}));
        }
      }
    }
    DropSpareSection();
    EXPECT_EQ(test::LiveKernelHandles(), handles) << fields[0];
    return outcome;
  });
  EXPECT_EQ(ConvertFromDib(nullptr, kCurrentForm, Bytes{}, Bytes{}), kInvalidArgument);
}

TEST(ConvertFromDib, RunsAtAPointer_EndByTheHeaderOrTheirMark) {
  for (const size_t size : {0, 2}) {
    PackedDib dib = {{sizeof dib.header, 8, 1, 1, 8, BI_RLE8, static_cast<DWORD>(size), 0, 0, 2, 0},
                     {},
                     {4, 1, 4, 1, 0, 1}};
    BitmapScope bitmap;
    ASSERT_EQ(ConvertFromDib(bitmap.Get(), kCurrentForm, &dib, dib.bits), kSuccess);
    std::vector<std::byte> row(8), expected(8, std::byte{1});
    std::fill(expected.begin() + 4, expected.end(), std::byte{size == 0});
    FetchRow(*bitmap.Get(), 0, row);
    EXPECT_EQ(row, expected) << size;
  }
}

}  // namespace
}  // namespace quillo::imaging
