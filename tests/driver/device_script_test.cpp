#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sstream>

#include "base/module_instance.h"
#include "driver/callbacks.h"
#include "driver/device/device.h"
#include "host/engine/services/surfaces.h"
#include "support/margins.h"

// The script tests/corpus/driver/devices.txt. A line is a caller's device mode and, after ">", what
// becomes of it, each as NAME=VALUE.
namespace quillo {
namespace {

constexpr struct {
  const char* name;
  short DEVMODEW::*member;
  DWORD field;
} kMembers[] = {
    {"orientation", &DEVMODEW::dmOrientation, DM_ORIENTATION},
    {"paper", &DEVMODEW::dmPaperSize, DM_PAPERSIZE},
    {"length", &DEVMODEW::dmPaperLength, 0},
    {"width", &DEVMODEW::dmPaperWidth, 0},
    {"copies", &DEVMODEW::dmCopies, DM_COPIES},
    {"source", &DEVMODEW::dmDefaultSource, DM_DEFAULTSOURCE},
    {"quality", &DEVMODEW::dmPrintQuality, DM_PRINTQUALITY},
    {"y", &DEVMODEW::dmYResolution, 0},
    {"colour", &DEVMODEW::dmColor, DM_COLOR},
    {"duplex", &DEVMODEW::dmDuplex, DM_DUPLEX},
};

using Values = std::map<std::string, std::string>;

Values Parse(const std::string& text) {
  Values values;
  std::istringstream line(text);
  for (std::string word; line >> word;) {
    const size_t equals = word.find('=');
    values[word.substr(0, equals)] = word.substr(equals + 1);
  }
  return values;
}

/// `left` and `top` are margins in inches, of a mode of this driver that stores them as
/// millimetres; `fields` says which members count, by default those that are given.
DeviceMode CallersMode(Values values) {
  DeviceMode mode = {};
  mode.pub.dmSize = sizeof(DEVMODEW);
  if (values.contains("left")) {
    BuildDefaultDeviceMode(mode, nullptr);
    test::SetMargins(mode, std::stof(values["left"]), std::stof(values["top"]));
    mode.own.margin_unit = kMarginMillimetres;
  }
  for (const auto& [name, member, field] : kMembers) {
    if (!values.contains(name)) continue;
    mode.pub.*member = static_cast<short>(std::stoi(values[name]));
    mode.pub.dmFields |= field;
  }
  if (values.contains("fields")) mode.pub.dmFields = std::stoul(values["fields"]);
  return mode;
}

/// The members of the device's mode, `caps` (the words of its GDIINFO that are not zero, by index),
/// its physical offset, and its surface.
Values Outcome(DeviceMode caller) {
  g_module_instance = GetModuleHandleW(nullptr);
  ULONG caps[sizeof(GDIINFO) / sizeof(ULONG)] = {};
  const DHPDEV handle = quillo::DrvEnablePDEV(&caller.pub, nullptr, 0, nullptr, sizeof caps, caps,
                                              0, nullptr, nullptr, nullptr, nullptr);
  host::EngineDevice engine_device;
  quillo::DrvCompletePDEV(handle, engine_device.Handle());
  const HSURF surface = quillo::DrvEnableSurface(handle);
  const DEVICE_PDEV& device = *FindDevice(handle);
  Values values;
  for (const auto& [name, member, field] : kMembers) {
    values[name] = std::to_string(device.mode.pub.*member);
  }
  for (size_t i = 0; i < std::size(caps); ++i) {
    if (caps[i] == 0) continue;
    values["caps"] += std::to_string(i) + ":" + std::to_string(caps[i]) + ",";
  }
  EXPECT_EQ(device.mode.own.margin_unit, kMarginInches);
  EXPECT_EQ(device.resolution.x, device.resolution.y);
  values["bits"] = std::to_string(device.mode.pub.dmBitsPerPel);
  values["dpi"] = std::to_string(device.resolution.x);
  values["offset"] =
      std::to_string(device.physical_offset.x) + "," + std::to_string(device.physical_offset.y);
  if (const auto* found = host::FindSurface(surface)) {
    EXPECT_EQ(found->hooks, 0x105FBu);
    EXPECT_EQ(found->iBitmapFormat, static_cast<ULONG>(BMF_24BPP));
    EXPECT_EQ(found->sizlBitmap.cx, device.surface_size.cx);
    values["surface"] =
        std::to_string(found->sizlBitmap.cx) + "x" + std::to_string(found->sizlBitmap.cy);
    values["stride"] = std::to_string(std::abs(found->lDelta));
  }
  quillo::DrvDisableSurface(handle);
  EXPECT_EQ(host::FindSurface(surface), nullptr);
  EXPECT_EQ(device.surface, nullptr);
  quillo::DrvDisableSurface(handle);
  quillo::DrvDisablePDEV(handle);
  return values;
}

TEST(DeviceScript, Corpus) {
  const auto path = std::filesystem::path(QUILLO_SOURCE_DIR) / "tests/corpus/driver/devices.txt";
  std::ifstream script(path);
  ASSERT_TRUE(script);
  for (std::string line; std::getline(script, line);) {
    if (line.empty() || line[0] == '#') continue;
    SCOPED_TRACE(line);
    const size_t end = line.find('>');
    Values outcome = Outcome(CallersMode(Parse(line.substr(0, end))));
    for (const auto& [name, value] : Parse(line.substr(end + 1))) EXPECT_EQ(outcome[name], value);
  }
}

}  // namespace
}  // namespace quillo
