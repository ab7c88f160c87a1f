#include "imaging/dib_section.h"

#include <gtest/gtest.h>

#include "base/gdi_owners.h"
#include "imaging/rows.h"
#include "imaging/storage_choice.h"

namespace quillo::imaging {
namespace {

TEST(PresentAsDibSection, EveryPresentableDepth_SharesItsPixels) {
  for (const uint32_t bits : {1u, 4u, 8u, 16u, 24u, 32u}) {
    for (const uint32_t view : {kTopRowFirst, kBottomRowFirst}) {
      for (const uint32_t type : {kMemoryTypeSection, kMemoryTypeFile}) {
        BitmapScope bitmap;
        ASSERT_EQ(Create(bitmap.Get(), kCurrentForm, type, 9, 5, bits, bits > 8 ? 1 : 0, nullptr,
                         view, nullptr, 0),
                  kSuccess);
        const DibSectionDc dc(PresentAsDibSection(bitmap.Get()));
        ASSERT_TRUE(dc) << bits;
        EXPECT_EQ(SetPixel(dc.Get(), 2, 1, RGB(255, 255, 255)), static_cast<COLORREF>(0xFFFFFF));
        GdiFlush();
        std::byte row[64];
        FetchRow(*bitmap.Get(), view == kTopRowFirst ? 1 : 3, row);
        EXPECT_TRUE(std::any_of(row, row + bitmap->bytes_per_line,
                                [](std::byte b) { return b != std::byte{0}; }))
            << bits << " bits, view " << view << ", type " << type;
      }
    }
  }
}

TEST(PresentAsDibSection, BitmapsWithoutADib_GiveNull) {
  std::byte data[64];
  struct {
    uint32_t type, bits, order;
  } const cases[] = {{1, 2, 0},  {1, 7, 0},  {1, 12, 1}, {1, 48, 1},
                     {1, 64, 1}, {1, 16, 2}, {2, 32, 1}};
  for (const auto& c : cases) {
    BitmapScope bitmap;
    ASSERT_EQ(Create(bitmap.Get(), kCurrentForm, c.type, 4, 4, c.bits, c.order, nullptr, 1,
                     c.type == 2 ? data : nullptr, sizeof(data)),
              kSuccess);
    EXPECT_EQ(PresentAsDibSection(bitmap.Get()), nullptr) << c.bits << ' ' << c.order;
  }
  EXPECT_EQ(PresentAsDibSection(nullptr), nullptr);
  BitmapHandle empty{};
  Init(&empty, kCurrentForm, 4, 4, 24);
  EXPECT_EQ(PresentAsDibSection(&empty), nullptr);
}

}  // namespace
}  // namespace quillo::imaging
