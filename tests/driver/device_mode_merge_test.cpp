#include "config/merge/device_mode_merge.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>

#include "support/case_table.h"

namespace quillo {
namespace {

DeviceMode Default() {
  DeviceMode mode;
  BuildDefaultDeviceMode(mode, L"Some printer");
  return mode;
}

TEST(DefaultDeviceMode, Name_CutAndDefaulted) {
  DeviceMode mode;
  BuildDefaultDeviceMode(mode, nullptr);
  EXPECT_STREQ(mode.pub.dmDeviceName, L"VORNIX Quillo 6");
  EXPECT_EQ(mode.pub.dmFields, 0x00040F03u);
  EXPECT_EQ(mode.pub.dmPrintQuality, DMRES_LOW);
  BuildDefaultDeviceMode(mode, L"0123456789012345678901234567890123456789");
  EXPECT_STREQ(mode.pub.dmDeviceName, L"0123456789012345678901234567890");
}

TEST(MergeDeviceMode, NoCaller_Unchanged) {
  DeviceMode mode = Default();
  const DeviceMode before = mode;
  MergeDeviceMode(mode, nullptr);
  EXPECT_EQ(std::memcmp(&mode, &before, sizeof mode), 0);
}

TEST(MergeDeviceMode, FieldsAfterItsOwnSize_NeitherReadNorGiven) {
  // Ends where no byte can be read.
  auto* const pages = static_cast<std::byte*>(
      VirtualAlloc(nullptr, 8192, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
  DWORD protection = 0;
  ASSERT_TRUE(VirtualProtect(pages + 4096, 4096, PAGE_NOACCESS, &protection));
  DeviceMode full = Default();
  full.pub.dmOrientation = DMORIENT_LANDSCAPE;
  full.pub.dmPaperSize = DMPAPER_A5;
  full.pub.dmDefaultSource = DMBIN_MANUAL;
  full.pub.dmPrintQuality = DMRES_HIGH;
  for (WORD size = offsetof(DEVMODEW, dmDriverExtra); size < sizeof(DEVMODEW); ++size) {
    SCOPED_TRACE(size);
    full.pub.dmSize = size;
    auto* const caller = pages + 4096 - size;
    std::memcpy(caller, &full, size);
    DeviceMode mode = Default();
    MergeDeviceMode(mode, reinterpret_cast<const DEVMODEW*>(caller));
    EXPECT_EQ(mode.pub.dmOrientation == DMORIENT_LANDSCAPE, size >= 78);
    EXPECT_EQ(mode.pub.dmPaperSize == DMPAPER_A5, size >= 80);
    EXPECT_EQ(mode.pub.dmDefaultSource == DMBIN_MANUAL, size >= 90);
    EXPECT_EQ(mode.pub.dmPrintQuality == DMRES_HIGH, size >= 92);
  }
  VirtualFree(pages, 0, MEM_RELEASE);
}

TEST(MergeDeviceMode, Shape_DecidesOnNameAndPrivatePart) {
  test::CheckCases("driver/mode_shapes.txt", [](const auto& fields) {
    DeviceMode caller;
    BuildDefaultDeviceMode(caller, nullptr);
    std::fill_n(caller.pub.dmDeviceName, CCHDEVICENAME, L'x');  // without a terminator
    std::memset(&caller.own, 0x5A, sizeof caller.own);
    test::Scan(fields[1], caller.pub.dmSpecVersion, caller.pub.dmDriverVersion, caller.pub.dmSize,
               caller.pub.dmDriverExtra);
    DeviceMode mode = Default();
    MergeDeviceMode(mode, &caller.pub);
    const bool taken = mode.pub.dmDeviceName[0] == L'x';
    EXPECT_EQ(std::wstring(mode.pub.dmDeviceName),
              taken ? std::wstring(CCHDEVICENAME - 1, L'x') : L"Some printer");
    const PrivatePart expected = taken ? caller.own : PrivatePart{};
    EXPECT_EQ(std::memcmp(&mode.own, &expected, sizeof expected), 0) << fields[0];
    return std::string(taken ? "taken" : "not taken");
  });
}

}  // namespace
}  // namespace quillo
