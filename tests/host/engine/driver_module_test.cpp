#include "host/engine/driver_module.h"

#include <gtest/gtest.h>

#include "host/engine/print_device.h"
#include "host/engine/services/colors.h"

namespace quillo::host {
namespace {

constexpr wchar_t kShippedDriver[] = L"" QUILLO_DRIVER_PATH;

TEST(DriverModule, ShippedDriver_EnablesADeviceWithItsSurface) {
  const DriverModule module(kShippedDriver);
  {
    DEVMODEW mode{};
    mode.dmSize = sizeof mode;
    mode.dmFields = DM_PRINTQUALITY;
    mode.dmPrintQuality = 300;
    mode.dmYResolution = 300;
    PrintDevice device(module.Functions(), {nullptr, L"Printer", L"FILE:"}, &mode);
    EXPECT_EQ(device.Capabilities().ulLogPixelsX, 300u);
    EXPECT_NE(device.Info().flGraphicsCaps & GCAPS_GEOMETRICWIDE, 0u);
    EXPECT_EQ(LivePaletteCount(), 1u);
    device.EnableSurface();
    EXPECT_EQ(device.Surface()->sizlBitmap.cx, static_cast<LONG>(device.Capabilities().ulHorzRes));
    EXPECT_EQ(device.Surface()->iBitmapFormat, ULONG{BMF_24BPP});
    EXPECT_EQ(device.Surface()->hooks, 0x105FBu);
  }
  EXPECT_EQ(LiveSurfaceCount(), 0u);
  EXPECT_EQ(LivePaletteCount(), 0u);
}

TEST(DriverModule, WrongModule_IsRefusedByName) {
  const struct {
    const wchar_t* path;
    const char* call;
  } cases[] = {{L"C:\\no such driver.dll", "loading the driver"},
               {L"C:\\windows\\system32\\version.dll", "finding DrvQueryDriverInfo"}};
  for (const auto& c : cases) {
    try {
      const DriverModule module(c.path);
      FAIL();
    } catch (const DriverFailure& failure) {
      EXPECT_EQ(failure.Call(), c.call);
      EXPECT_NE(failure.LastError(), 0u);
    }
  }
}

}  // namespace
}  // namespace quillo::host
