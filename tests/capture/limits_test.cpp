#include <array>

#include "capture/brush.h"
#include "capture/hooks.h"
#include "capture/packed_surface.h"
#include "capture/pen.h"
#include "host/engine/services/brushes.h"
#include "host/engine/services/guard.h"
#include "host/engine/services/surfaces.h"
#include "support/capture_fixture.h"

// What the scripts of capture cannot state: sizes at their limits, failing memory, and what calls
// leave in the objects that they were given.
namespace quillo {
namespace {

using CaptureLimits = test::CaptureTest;

TEST_F(CaptureLimits, PenStyles_AsManyEntriesAsARecordHolds) {
  std::vector<FLOAT_LONG> entries(5000);
  LINEATTRS pen = {};
  pen.pstyle = entries.data();
  const auto record = [&](FLONG flags, ULONG count) {
    pen.fl = flags;
    pen.cstyle = count;
    WritePen(device_, &pen, nullptr, nullptr);
    return TakeRecords();
  };
  std::string many = " 5000";
  for (size_t i = 0; i < entries.size() + 1; ++i) many += " 0";
  EXPECT_EQ(record(LA_GEOMETRIC, 5000), "SETMITERLIMIT 1\nEXTCREATEPEN 0x10007 0" + many + "\n");
  EXPECT_EQ(record(0, 5000), "EXTCREATEPEN 0x7 0" + many + "\n");
  for (const ULONG count : {0x3FFFFFFCu, 0x40000001u, 0xFFFFFFFFu}) {
    EXPECT_EQ(record(LA_GEOMETRIC, count), "SETMITERLIMIT 1\nEXTCREATEPEN 0x10000 0 0 0\n");
    EXPECT_EQ(record(0, count), "");
  }
  {
    // Without memory for the entries the pen is solid.
    const test::FailingAllocation entries_fail(1);
    EXPECT_EQ(record(LA_GEOMETRIC, 2), "SETMITERLIMIT 1\nEXTCREATEPEN 0x10000 0 0 0\n");
  }
  pen.pstyle = nullptr;
  EXPECT_EQ(record(0, 0xFFFFFFFF), "CREATEPEN 0 0 0 0x0\n");
}

TEST_F(CaptureLimits, RealizeBrush_SizeAndFailures) {
  uint32_t row = 0;
  host::Surface pattern({2, 1}, BMF_8BPP, false, &row, sizeof row, 4);
  host::BrushObject brush((host::BrushObject::Pattern()));
  SURFOBJ stray = {};
  SetLastError(0);
  EXPECT_FALSE(quillo::DrvRealizeBrush(&brush, &stray, nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  EXPECT_FALSE(quillo::DrvRealizeBrush(nullptr, &surface_, nullptr, nullptr, nullptr, 0));
  host::FailNextCall("BRUSHOBJ_pvAllocRbrush");
  EXPECT_FALSE(quillo::DrvRealizeBrush(&brush, &surface_, nullptr, nullptr, nullptr, 0));
  EXPECT_EQ(brush.pvRbrush, nullptr);
  EXPECT_TRUE(quillo::DrvRealizeBrush(&brush, &surface_, &pattern, nullptr, nullptr, HS_DDI_MAX));
  EXPECT_EQ(static_cast<const RealisedBrush*>(brush.pvRbrush)->total_size, 24u + 1068);
}

TEST_F(CaptureLimits, CopyBits_FromTheDevice_ErasesTheTarget) {
  std::array<uint8_t, 24> bits = {};
  host::Surface picture({3, 2}, BMF_24BPP, false, bits.data(), 24, 12);
  SURFOBJ device_source = {};
  device_source.iType = STYPE_DEVICE;
  RECTL rect = {0, 0, 2, 1};
  POINTL origin = {};
  EXPECT_TRUE(quillo::DrvCopyBits(&picture, &device_source, nullptr, nullptr, &rect, &origin));
  // The upper row is the second one in memory.
  for (size_t i = 0; i < bits.size(); ++i) EXPECT_EQ(bits[i], i >= 12 && i < 18 ? 0xFF : 0) << i;
  EXPECT_EQ(TakeRecords(), "");
}

TEST_F(CaptureLimits, SurfaceToPackedBitmap_SizesAndRefusals) {
  std::array<std::byte, 68> packed = {};
  uint32_t bits[6] = {};
  host::Surface picture({3, 2}, BMF_24BPP, false, bits, 24, 12);
  uint32_t size = 0;
  EXPECT_TRUE(SurfaceToPackedBitmap(nullptr, &picture, nullptr, nullptr, size));
  EXPECT_EQ(size, packed.size());
  EXPECT_TRUE(SurfaceToPackedBitmap(nullptr, &picture, nullptr, packed.data(), size));
  EXPECT_EQ(LoadOrZero<int32_t>(packed, 24), 6000);
  size = 67;
  EXPECT_FALSE(SurfaceToPackedBitmap(nullptr, &picture, nullptr, packed.data(), size));
  picture.pvBits = nullptr;
  EXPECT_FALSE(SurfaceToPackedBitmap(nullptr, &picture, nullptr, nullptr, size));
  EXPECT_EQ(size, 0u);
  EXPECT_EQ(PackedBitmapSize(&picture), 68u);
}

}  // namespace
}  // namespace quillo
