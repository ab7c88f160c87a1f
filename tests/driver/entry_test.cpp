#include "base/ddi.h"

#include <gtest/gtest.h>

namespace {

TEST(EnableDriver, Size_DecidesWhatIsFilled) {
  for (ULONG size = 0; size <= 24; ++size) {
    SCOPED_TRACE(size);
    DRVENABLEDATA data = {7, 7, nullptr};
    EXPECT_TRUE(DrvEnableDriver(0, size, &data));
    EXPECT_EQ(data.iDriverVersion, size >= 4 ? 0x00030100u : 7u);
    EXPECT_EQ(data.c, size >= 8 ? 24u : 7u);
    EXPECT_EQ(data.pdrvfn != nullptr, size >= 16);
  }
}

TEST(EnableDriver, Table_InOrderWithoutHoles) {
  DRVENABLEDATA data = {};
  DrvEnableDriver(DDI_DRIVER_VERSION_NT5_01, sizeof data, &data);
  constexpr ULONG kOrder[] = {0,  7,  1,  2,  3,  4,  32, 33, 35, 34, 24, 12,
                              18, 20, 19, 13, 17, 15, 14, 16, 31, 71, 23, 37};
  ASSERT_EQ(data.c, std::size(kOrder));
  for (ULONG i = 0; i < data.c; ++i) {
    EXPECT_EQ(data.pdrvfn[i].iFunc, kOrder[i]) << i;
    EXPECT_NE(data.pdrvfn[i].pfn, nullptr) << i;
  }
}

TEST(QueryDriverInfo, Modes_Table) {
  const struct {
    DWORD mode;
    bool buffer;
    DWORD size;
    BOOL result;
    DWORD error, needed, answer;
  } cases[] = {
      {1, true, 4, TRUE, 0, 4, 1},     {1, true, 8, TRUE, 0, 4, 1},
      {1, true, 3, FALSE, 122, 4, 9},  {1, false, 0, FALSE, 122, 4, 9},
      {1, false, 4, FALSE, 122, 4, 9}, {0, true, 4, FALSE, 87, 9, 9},
      {2, true, 4, FALSE, 87, 9, 9},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.mode << ", " << c.buffer << ", " << c.size);
    DWORD answer = 9;
    DWORD needed = 9;
    SetLastError(0);
    EXPECT_EQ(DrvQueryDriverInfo(c.mode, c.buffer ? &answer : nullptr, c.size, &needed), c.result);
    EXPECT_EQ(GetLastError(), c.error);
    EXPECT_EQ(needed, c.needed);
    EXPECT_EQ(answer, c.answer);
  }
}

}  // namespace
