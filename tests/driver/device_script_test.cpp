#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <span>
#include <sstream>
#include <utility>

#include "base/module_instance.h"
#include "driver/callbacks.h"
#include "driver/device/device.h"
#include "host/engine/services/surfaces.h"
#include "support/guarded_bytes.h"
#include "support/line.h"
#include "support/mode_members.h"
#include "support/script.h"

// The script tests/corpus/driver/devices.txt. A line is members of a caller's device mode, the
// driver's default but for those ("none": no device mode), and after ">" what becomes of it, each
// as NAME=VALUE.
namespace quillo {
namespace {

using test::Line;

/// The mode of a device that was enabled with a caller's mode.
struct Outcome {
  DeviceMode mode;
  std::map<std::string, std::string> others;  // values that are no members of the mode
};

/// The words that are not zero, each with its index.
std::string NumberedWords(std::span<const ULONG> words) {
  std::string text;
  for (size_t i = 0; i < words.size(); ++i) {
    if (words[i] != 0) text += Line(i, ':', words[i], ',');
  }
  return text;
}

/// The others are the resolution, `caps` and `info` (the words of GDIINFO and DEVINFO), the
/// physical offset, and the surface.
Outcome Enabled(DEVMODEW* caller) {
  g_module_instance = GetModuleHandleW(nullptr);
  ULONG caps[sizeof(GDIINFO) / sizeof(ULONG)] = {};
  alignas(DEVINFO) ULONG info[sizeof(DEVINFO) / sizeof(ULONG)] = {};
  const DHPDEV handle =
      quillo::DrvEnablePDEV(caller, nullptr, 0, nullptr, sizeof caps, caps, sizeof info,
                            reinterpret_cast<DEVINFO*>(info), nullptr, nullptr, nullptr);
  host::EngineDevice engine_device;
  quillo::DrvCompletePDEV(handle, engine_device.Handle());
  const HSURF surface = quillo::DrvEnableSurface(handle);
  const DEVICE_PDEV& device = *FindDevice(handle);
  Outcome outcome = {device.mode, {}};
  auto& values = outcome.others;
  values["caps"] = NumberedWords(caps);
  auto& palette = reinterpret_cast<DEVINFO*>(info)->hpalDefault;
  EXPECT_EQ(std::exchange(palette, nullptr), device.palette);
  values["info"] = NumberedWords(info);
  EXPECT_EQ(device.mode.own.margin_unit, kMarginInches);
  EXPECT_EQ(device.resolution.x, device.resolution.y);
  values["dpi"] = std::to_string(device.resolution.x);
  values["offset"] = Line(device.physical_offset.x, ',', device.physical_offset.y);
  if (const auto* found = host::FindSurface(surface)) {
    EXPECT_EQ(found->hooks, 0x105FBu);
    EXPECT_EQ(found->iBitmapFormat, static_cast<ULONG>(BMF_24BPP));
    EXPECT_EQ(found->sizlBitmap.cx, device.surface_size.cx);
    values["surface"] = Line(found->sizlBitmap.cx, 'x', found->sizlBitmap.cy);
    values["stride"] = std::to_string(std::abs(found->lDelta));
  }
  quillo::DrvDisableSurface(handle);
  EXPECT_EQ(host::FindSurface(surface), nullptr);
  EXPECT_EQ(device.surface, nullptr);
  quillo::DrvDisableSurface(handle);
  quillo::DrvDisablePDEV(handle);
  return outcome;
}

TEST(DeviceScript, Corpus) {
  for (const test::ScriptLine& line : test::ReadScriptLines("driver/devices.txt")) {
    SCOPED_TRACE(line.place);
    const bool none = line.text == "none";
    DeviceMode mode;
    BuildDefaultDeviceMode(mode, L"0123456789012345678901234567890123456789");
    EXPECT_STREQ(mode.pub.dmDeviceName, L"0123456789012345678901234567890");
    if (!none) test::SetMembers(mode, line.text);
    mode.own.margin_unit = kMarginMillimetres;  // which is not looked at
    // No byte after those that it says it has.
    const test::GuardedBytes caller(size_t{mode.pub.dmSize} + mode.pub.dmDriverExtra);
    std::memcpy(caller.Get(), &mode, std::min(caller.Size(), sizeof mode));
    Outcome outcome = Enabled(none ? nullptr : caller.Mode());
    std::istringstream others(test::ExpectMembers(outcome.mode, line.expected));
    for (std::string name; std::getline(others >> std::ws, name, '=');) {
      std::string value;
      others >> value;
      EXPECT_EQ(outcome.others[name], value) << name;
    }
  }
}

}  // namespace
}  // namespace quillo
