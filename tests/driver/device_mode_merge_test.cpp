#include "driver/device_mode_merge.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>

namespace quillo {
namespace {

DeviceMode Default() {
  DeviceMode mode;
  BuildDefaultDeviceMode(mode, L"Some printer");
  return mode;
}

/// The default device mode after merging one that `change` made from another driver's.
DEVMODEW Merged(const std::function<void(DEVMODEW&)>& change) {
  DEVMODEW caller = {};
  change(caller);
  DeviceMode mode = Default();
  MergeDeviceMode(mode, &caller);
  return mode.pub;
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

TEST(MergeDeviceMode, Quality_Table) {
  const struct {
    short quality, y_resolution;          // the caller's
    short merged_quality, merged_y, dpi;  // the device's
  } cases[] = {
      {300, 200, 300, 200, 200}, {2000, 0, 96, 96, 96},     {49, 1601, 96, 96, 96},
      {50, 1600, 50, 1600, 50},  {600, 600, 600, 600, 600}, {0, 0, 96, 96, 96},
      {-3, 0, -3, 0, 300},       {-4, 0, -4, 0, 600},       {-1, 0, -1, 0, 96},
      {-7, 0, -2, 0, 150},       {-5, 0, -2, 0, 150},       {-3, 300, 96, 300, 96},
      {-3, -1, 96, 96, 96},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.quality << ", " << c.y_resolution);
    const DEVMODEW mode = Merged([&c](DEVMODEW& caller) {
      caller.dmFields = DM_PRINTQUALITY;
      caller.dmPrintQuality = c.quality;
      caller.dmYResolution = c.y_resolution;
    });
    EXPECT_EQ(mode.dmPrintQuality, c.merged_quality);
    EXPECT_EQ(mode.dmYResolution, c.merged_y);
    EXPECT_EQ(ResolutionOf(mode), c.dpi);
  }
}

TEST(MergeDeviceMode, Paper_Table) {
  const struct {
    short paper, orientation, width, length;  // the caller's
    short merged_width, merged_length;
  } cases[] = {
      {DMPAPER_A4, DMORIENT_PORTRAIT, 1, 2, 2100, 2970},
      {DMPAPER_A4, DMORIENT_LANDSCAPE, 1, 2, 2970, 2100},
      {DMPAPER_A4, 3, 1, 2, 2100, 2970},
      {12, DMORIENT_PORTRAIT, 1, 2, 2159, 2794},
      {-1, DMORIENT_PORTRAIT, 1, 2, 2159, 2794},
      {DMPAPER_USER, DMORIENT_LANDSCAPE, 1000, 2000, 1000, 2000},
      {300, DMORIENT_PORTRAIT, 1000, 2000, 1000, 2000},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.paper << ", " << c.orientation);
    const DEVMODEW mode = Merged([&c](DEVMODEW& caller) {
      caller.dmFields = DM_PAPERSIZE | DM_ORIENTATION;
      caller.dmPaperSize = c.paper;
      caller.dmOrientation = c.orientation;
      caller.dmPaperWidth = c.width;
      caller.dmPaperLength = c.length;
    });
    EXPECT_EQ(mode.dmPaperSize, c.paper);
    EXPECT_EQ(mode.dmPaperWidth, c.merged_width);
    EXPECT_EQ(mode.dmPaperLength, c.merged_length);
    EXPECT_EQ(mode.dmOrientation,
              c.orientation == DMORIENT_LANDSCAPE ? DMORIENT_LANDSCAPE : DMORIENT_PORTRAIT);
  }
}

TEST(MergeDeviceMode, OtherMembers_OnlyWhereTheDeviceHonoursThem) {
  const auto ask = [](DEVMODEW& caller) {
    caller.dmFields = DM_COPIES | DM_COLOR | DM_BITSPERPEL | DM_DEFAULTSOURCE | DM_DUPLEX;
    caller.dmCopies = 5;
    caller.dmColor = DMCOLOR_MONOCHROME;
    caller.dmBitsPerPel = 8;
    caller.dmDefaultSource = DMBIN_MANUAL;
    caller.dmDuplex = DMDUP_VERTICAL;
    caller.dmPaperSize = DMPAPER_A3;  // its field bit is clear
  };
  const DEVMODEW mode = Merged(ask);
  EXPECT_EQ(mode.dmCopies, 1);
  EXPECT_EQ(mode.dmColor, DMCOLOR_COLOR);
  EXPECT_EQ(mode.dmBitsPerPel, 24u);
  EXPECT_EQ(mode.dmDefaultSource, DMBIN_MANUAL);
  EXPECT_EQ(mode.dmDuplex, 0);
  EXPECT_EQ(mode.dmPaperSize, DMPAPER_LETTER);
}

TEST(MergeDeviceMode, Shape_DecidesOnNameAndPrivatePart) {
  const struct {
    const char* what;
    std::function<void(DEVMODEW&)> change;
    bool taken;
  } cases[] = {
      {"own", [](DEVMODEW&) {}, true},
      {"other system version", [](DEVMODEW& m) { m.dmSpecVersion = 0x0400; }, false},
      {"other driver version", [](DEVMODEW& m) { m.dmDriverVersion = 0x0401; }, false},
      {"other size", [](DEVMODEW& m) { m.dmSize = 188; }, false},
      {"no private part", [](DEVMODEW& m) { m.dmDriverExtra = 0; }, false},
      {"longer private part", [](DEVMODEW& m) { m.dmDriverExtra = 833; }, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    DeviceMode caller;
    BuildDefaultDeviceMode(caller, nullptr);
    std::fill_n(caller.pub.dmDeviceName, CCHDEVICENAME, L'x');  // without a terminator
    std::memset(&caller.own, 0x5A, sizeof caller.own);
    c.change(caller.pub);
    DeviceMode mode = Default();
    MergeDeviceMode(mode, &caller.pub);
    EXPECT_EQ(std::wstring(mode.pub.dmDeviceName),
              c.taken ? std::wstring(CCHDEVICENAME - 1, L'x') : L"Some printer");
    PrivatePart expected = {};
    if (c.taken) expected = caller.own;
    EXPECT_EQ(std::memcmp(&mode.own, &expected, sizeof expected), 0);
  }
}

}  // namespace
}  // namespace quillo
