#include "driver/device/device.h"

#include <array>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <vector>

#include "base/module_instance.h"
#include "capture/hooks.h"
#include "driver/callbacks.h"
#include "driver/capabilities.h"
#include "host/engine/services/colours.h"
#include "host/engine/services/guard.h"
#include "host/engine/services/surfaces.h"
#include "job/job.h"
#include "support/capture_fixture.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);

namespace quillo {
namespace {

class Device : public testing::Test {
 protected:
  void SetUp() override {
    DllMain(GetModuleHandleW(nullptr), DLL_PROCESS_ATTACH, nullptr);
    palettes_ = host::LivePaletteCount();
  }
  void TearDown() override { EXPECT_EQ(host::LivePaletteCount(), palettes_); }

  static DHPDEV Enable(const DEVMODEW* mode = nullptr) {
    return quillo::DrvEnablePDEV(const_cast<DEVMODEW*>(mode), nullptr, 0, nullptr, 0, nullptr, 0,
                                 nullptr, nullptr, nullptr, nullptr);
  }

  host::EngineDevice engine_device_;
  size_t palettes_ = 0;
};

TEST_F(Device, ShortBuffers_GetNoByteTooMany) {
  std::vector<std::byte> whole;
  for (const ULONG size : std::array<ULONG, 6>{4096, sizeof(GDIINFO), 103, 4, 1, 0}) {
    SCOPED_TRACE(size);
    std::vector<std::byte> caps(8192, std::byte{0xEE}), info = caps;
    const DHPDEV device = quillo::DrvEnablePDEV(
        nullptr, nullptr, 0, nullptr, size, reinterpret_cast<ULONG*>(caps.data()), size,
        reinterpret_cast<DEVINFO*>(info.data()), nullptr, nullptr, nullptr);
    ASSERT_NE(device, nullptr);
    if (whole.empty()) whole = caps;
    const size_t caps_size = std::min<size_t>(size, sizeof(GDIINFO));
    EXPECT_EQ(std::memcmp(caps.data(), whole.data(), caps_size), 0);
    EXPECT_EQ(caps[caps_size], std::byte{0xEE});
    EXPECT_EQ(info[std::min<size_t>(size, sizeof(DEVINFO))], std::byte{0xEE});
    quillo::DrvDisablePDEV(device);
  }
}

TEST_F(Device, Patterns_NoneOffered) {
  std::array<HSURF, 4> patterns;
  patterns.fill(reinterpret_cast<HSURF>(uintptr_t{0x77}));
  const DHPDEV device =
      quillo::DrvEnablePDEV(nullptr, nullptr, 3, patterns.data(), 0, nullptr, 0, nullptr, nullptr,
                            nullptr, reinterpret_cast<HANDLE>(uintptr_t{0x1234}));
  EXPECT_EQ(patterns[2], nullptr);
  EXPECT_EQ(patterns[3], reinterpret_cast<HSURF>(uintptr_t{0x77}));
  EXPECT_EQ(FindDevice(device)->printer, reinterpret_cast<HANDLE>(uintptr_t{0x1234}));
  EXPECT_EQ(FindDevice(device)->remembered_colour, 0xFFFFFFu);
  quillo::DrvDisablePDEV(device);
}

TEST_F(Device, EnableFailures_LeaveNothing) {
  host::FailNextCall("EngCreatePalette");
  EXPECT_EQ(Enable(), nullptr);

  g_module_instance = nullptr;
  EXPECT_EQ(Enable(), nullptr);
  for (const DWORD reason : {0u, 2u, 3u}) {
    EXPECT_TRUE(DllMain(GetModuleHandleW(nullptr), reason, nullptr));
    EXPECT_EQ(g_module_instance, nullptr);
  }
}

/// Handles that are no living device.
std::vector<DHPDEV> ForeignHandles(DHPDEV freed) {
  static DEVICE_PDEV unmarked, half_signed, other_half, whole;
  half_signed.signature = other_half.closing_signature = kDeviceSignature;
  whole.signature = whole.closing_signature = kDeviceSignature;
  const auto at = [](const void* address) {
    return static_cast<DHPDEV>(const_cast<void*>(address));
  };
  return {nullptr,
          at(reinterpret_cast<void*>(1)),
          at(reinterpret_cast<void*>(0x8000)),
          at(&unmarked),
          at(&half_signed),
          at(&other_half),
          at(reinterpret_cast<const std::byte*>(&whole) + 4),
          freed};
}

TEST_F(Device, ForeignHandle_RefusedWithLastError) {
  const DHPDEV good = Enable();
  const DHPDEV freed = Enable();
  quillo::DrvDisablePDEV(freed);
  const std::function<bool(DHPDEV)> calls[] = {
      [=](DHPDEV handle) { return quillo::DrvResetPDEV(handle, good); },
      [=](DHPDEV handle) { return quillo::DrvResetPDEV(good, handle); },
      [](DHPDEV handle) { return quillo::DrvCompletePDEV(handle, nullptr), false; },
      [](DHPDEV handle) { return quillo::DrvDisablePDEV(handle), false; },
      [](DHPDEV handle) { return quillo::DrvEnableSurface(handle) != nullptr; },
      [](DHPDEV handle) { return quillo::DrvDisableSurface(handle), false; }};
  int index = 0;
  for (const DHPDEV handle : ForeignHandles(freed)) {
    SCOPED_TRACE(index++);
    for (const auto& call : calls) {
      SetLastError(0);
      EXPECT_FALSE(call(handle)) << &call - calls;
      EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER)) << &call - calls;
    }
    SURFOBJ surface = {};
    surface.dhpdev = handle;
    EXPECT_FALSE(quillo::DrvStartDoc(&surface, nullptr, 1));
    EXPECT_FALSE(quillo::DrvStartPage(&surface));
    EXPECT_FALSE(quillo::DrvSendPage(&surface));
    EXPECT_TRUE(quillo::DrvEndDoc(&surface, 0));
    EXPECT_FALSE(
        quillo::DrvStrokePath(&surface, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0));
    EXPECT_FALSE(quillo::DrvPaint(&surface, nullptr, nullptr, nullptr, 0));
  }
  EXPECT_FALSE(quillo::DrvStartDoc(nullptr, nullptr, 1));
  EXPECT_TRUE(quillo::DrvEndDoc(nullptr, 0));
  quillo::DrvDisablePDEV(good);
}

TEST_F(Device, SurfaceFailures_LeaveNothing) {
  const DHPDEV device = Enable();
  quillo::DrvCompletePDEV(device, engine_device_.Handle());
  for (const char* service : {"EngCreateBitmap", "EngAssociateSurface"}) {
    SCOPED_TRACE(service);
    const size_t surfaces = host::LiveSurfaceCount();
    host::FailNextCall(service);
    EXPECT_EQ(quillo::DrvEnableSurface(device), nullptr);
    EXPECT_EQ(FindDevice(device)->surface, nullptr);
    EXPECT_EQ(host::LiveSurfaceCount(), surfaces);
  }
  quillo::DrvDisablePDEV(device);
}

TEST_F(Device, DocumentAfterDocument_EachItsOwnJob) {
  SURFOBJ surface = {};
  surface.dhpdev = Enable();
  DEVICE_PDEV& device = *FindDevice(&surface);
  device.printer = reinterpret_cast<HANDLE>(uintptr_t{0x1234});
  EXPECT_TRUE(quillo::DrvEndDoc(&surface, 0));  // without a document
  for (const DWORD id : {1u, 2u, 3u}) {
    EXPECT_TRUE(quillo::DrvStartDoc(&surface, nullptr, id));
    CQloPrinter* job = LivingJob(device);
    ASSERT_NE(job, nullptr);
    EXPECT_EQ(job->job_id, id);
    EXPECT_EQ(job->printer, device.printer);
    EXPECT_EQ(job->playback.job.printer, device.printer);
    EXPECT_TRUE(quillo::DrvStartDoc(&surface, nullptr, 9));
    EXPECT_EQ(LivingJob(device), job);
    EXPECT_TRUE(quillo::DrvEndDoc(&surface, 0));
    EXPECT_EQ(LivingJob(device), nullptr);
    EXPECT_EQ(device.flags, static_cast<uint32_t>(kDocumentOpen));
  }
  quillo::DrvDisablePDEV(surface.dhpdev);
}

TEST_F(Device, Reset_CarriesAnOpenDocument) {
  const DHPDEV old_handle = Enable();
  const DHPDEV new_handle = Enable();
  DEVICE_PDEV& old_device = *FindDevice(old_handle);
  DEVICE_PDEV& new_device = *FindDevice(new_handle);
  old_device.document_word = 42;
  old_device.remembered_colour = 0x123456;
  EXPECT_TRUE(quillo::DrvResetPDEV(old_handle, new_handle));
  EXPECT_EQ(new_device.document_word, 0u);
  EXPECT_EQ(new_device.flags, 0u);

  auto* job = reinterpret_cast<CQloPrinter*>(uintptr_t{0x5000});
  old_device.job = job;
  old_device.flags = kDocumentOpen | kDrawingRefused;
  EXPECT_TRUE(quillo::DrvResetPDEV(old_handle, new_handle));
  EXPECT_EQ(new_device.document_word, 42u);
  EXPECT_EQ(new_device.job, job);
  EXPECT_EQ(new_device.flags, static_cast<uint32_t>(kDocumentOpen));
  EXPECT_EQ(new_device.remembered_colour, 0xFFFFFFu);
  EXPECT_EQ(LivingJob(new_device), job);
  old_device.job_ended = 1;
  EXPECT_TRUE(quillo::DrvResetPDEV(old_handle, new_handle));
  EXPECT_EQ(LivingJob(new_device), nullptr);
  quillo::DrvDisablePDEV(old_handle);
  quillo::DrvDisablePDEV(new_handle);
}

using DocumentStart = test::CaptureTest;

TEST_F(DocumentStart, Records_SettingsThenOffset) {
  device_.flags = kDocumentOpen;  // the job that is there stays
  std::memset(&device_.mode, 0x5A, sizeof device_.mode);
  device_.physical_offset = {12, -34};
  EXPECT_TRUE(quillo::DrvStartDoc(&surface_, nullptr, 1));
  std::string settings;
  for (int i = 0; i < 1052; ++i) settings += "5a";
  EXPECT_EQ(TakeRecords(), "DEVMODE [" + settings + "]\nPAGEVALUE 12 -34\n");
}

TEST_F(DocumentStart, Raster_HasTheResolutionOfEachAxis) {
  const GDIINFO raster = DescribeGraphics(device_);
  EXPECT_EQ(raster.ulLogPixelsX, 600u);
  EXPECT_EQ(raster.ulLogPixelsY, 300u);
  EXPECT_EQ(DescribeDevice(device_).lfDefaultFont.lfHeight, -42);  // ten points
}

}  // namespace
}  // namespace quillo
