#include "driver/capabilities.h"

#include <gtest/gtest.h>

#include "support/case_table.h"
#include "support/line.h"

// What the engine asks for before it draws.
namespace quillo {
namespace {

using test::CheckCases;
using test::Scan;

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
  CheckCases("driver/driver_info.txt", [](const auto& fields) {
    DWORD mode = 0, size = 0, answer = 9, needed = 9;
    std::string buffer;
    Scan(fields[0], mode, buffer, size);
    SetLastError(0);
    const BOOL result =
        DrvQueryDriverInfo(mode, buffer == "buffer" ? &answer : nullptr, size, &needed);
    return test::Line(result, ' ', GetLastError(), ' ', needed, ' ', answer);
  });
}

DEVICE_PDEV Device(short dpi) {
  DEVICE_PDEV device = {};
  BuildDefaultDeviceMode(device.mode, nullptr);
  device.mode.pub.dmPrintQuality = device.mode.pub.dmYResolution = dpi;
  device.resolution = {static_cast<uint32_t>(dpi), static_cast<uint32_t>(dpi)};
  return device;
}

TEST(DescribeGraphics, HalftoneCell_StepsAtEachLimit) {
  CheckCases("driver/halftone_cells.txt", [](const auto& fields) {
    return std::to_string(
        DescribeGraphics(Device(static_cast<short>(std::stoi(fields[0])))).ulHTPatternSize);
  });
}

}  // namespace
}  // namespace quillo
