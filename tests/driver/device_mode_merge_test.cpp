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
