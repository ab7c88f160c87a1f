#include "playback/dispatcher.h"

#include <gtest/gtest.h>
#include <random>

#include "capture/records/types.h"
#include "imaging/storage/section.h"
#include "playback/page.h"
#include "playback/picture.h"
#include "support/guarded_bytes.h"
#include "support/holdings.h"

namespace quillo::test {
namespace {

using namespace records;

TEST(DispatchRecord, UnknownTypesAndShortPayloads_IgnoredAndDrawNothing) {
  Page page;
  for (const uint32_t type :
       {0x10010000u, 0x10010010u, 0x10010030u, 0x10010031u, 0x10010032u, 0x10010033u, 0x10010034u,
        0x10010035u, 0x10010037u, 0x10000008u, 0x1001FFFFu, 0u, UINT32_MAX}) {
    EXPECT_EQ(page.Play(type, Payload(64)), 0) << std::hex << type;
  }
  for (const RecordInfo& info : kRecordInfos) {
    const uint32_t needed = info.rule == kNeedsPayload ? info.payload_size : 0;
    for (uint32_t size = 0; size < needed; ++size) {
      EXPECT_EQ(DispatchRecord(page.context, info.type, GuardedBytes(size).All()), 0)
          << info.name << ' ' << size;
    }
  }
  EXPECT_TRUE(page.EndsEmpty());
}

// Whatever the payload says, nothing behind its end is read: the test would not survive it. Counts,
// sizes and offsets that are nearly right do more harm than noise.
TEST(DispatchRecord, AnyContent_ReadsOnlyItsPayload) {
  const Payload dib = Picture{.bit_count = 8}.Packed();
  const auto size = static_cast<uint32_t>(dib.size());
  const Rect r = {0, 0, 5, 3};
  std::vector<std::pair<uint32_t, Payload>> records = {
      {REC_BITBLT, PayloadOf(r, 0, 0, 0u, 32u, dib)},
      {REC_STRETCHBLT, PayloadOf(r, r, 0u, Payload(24), 3u, 68u, dib)},
      {REC_ALPHABLEND, PayloadOf(r, r, 0x00FF0000u, 40u, dib)},
      {REC_SETDIBITSTODEVICE, PayloadOf(r, 0, 0, 28u, dib)},
      {REC_CREATEBRUSH, PayloadOf(uint32_t{BS_DIBPATTERNPT}, 0u, 0u, 0u, size, dib, uint8_t{0})},
      {REC_CREATEBRUSH, PayloadOf(uint32_t{BS_DIBPATTERNPT}, 0u, 0u, 1u, size, dib, uint8_t{0})},
  };
  std::mt19937 random(1);
  for (const RecordInfo& info : kRecordInfos) {
    for (uint32_t extra = 0; extra < 200; extra += 33) {
      Payload noise(info.payload_size + extra);
      for (auto& byte : noise) byte = static_cast<std::byte>(random());
      records.emplace_back(info.type, noise);
    }
  }
  constexpr uint32_t kNumbers[] = {0, 1, 4, 15, 24, 41, 300, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
  Page page;
  for (const auto& [type, record] : records) {
    const GuardedBytes guarded(record.size());
    const MutableBytes payload = guarded.All();
    for (size_t offset = 0; offset + 4 <= std::min<size_t>(record.size(), 108); offset += 4) {
      for (const uint32_t number : kNumbers) {
        std::copy(record.begin(), record.end(), payload.begin());
        Store(payload, offset, number);
        DispatchRecord(page.context, type, payload);
      }
    }
    // A pattern that is kept for pens is read here.
    page.Play(REC_EXTCREATEPEN, PayloadOf(uint32_t{PS_GEOMETRIC}, 3u, 0u, 0u));
  }
}

TEST(DispatchRecord, CopiedPayloads_CutToTheirPlaceOrFilledWithZeros) {
  Page page;
  EXPECT_EQ(page.Play(REC_DIBHEADER, Payload(60, std::byte{0xAB})), 1);
  EXPECT_EQ(page.Play(REC_DIBHEADER, Payload(2)), 1);
  EXPECT_EQ(page.context.band_header[1], std::byte{0});
  EXPECT_EQ(page.context.band_header[kBandHeaderBytes - 1], std::byte{0xAB});
  EXPECT_EQ(page.context.page_value.x, 0);  // stands behind the band header

  struct {
    DeviceMode mode;
    uint32_t behind;
  } settings = {{}, 1234};
  page.context.job.device_settings = &settings.mode;
  EXPECT_EQ(page.Play(REC_DEVMODE, Payload(2000, std::byte{0x77})), 1);
  EXPECT_EQ(settings.mode.own.margin_unit, 0x77777777u);
  EXPECT_EQ(settings.behind, 1234u);
  EXPECT_EQ(page.Play(REC_DEVMODE), 1);
  page.context.job.device_settings = nullptr;
  EXPECT_EQ(page.Play(REC_DEVMODE, Payload(1052)), 1);
}

TEST(DispatchRecord, WithoutPage_NothingHappens) {
  Page page;
  const HDC dc = std::exchange(page.context.page_dc, nullptr);
  for (const RecordInfo& info : kRecordInfos) page.Play(info.type, Payload(info.payload_size));
  ReleaseDrawingObjects(page.context);
  page.context.page_dc = dc;
  EXPECT_TRUE(page.EndsEmpty());
}

TEST(EndPagePlayback, ASectionThatIsKept_IsReleased) {
  imaging::DropSpareSection();
  const uintptr_t handles = LiveKernelHandles();
  imaging::GiveBackSection(imaging::TakeSection(1000));
  Page().Close();
  EXPECT_EQ(LiveKernelHandles(), handles);
}

}  // namespace
}  // namespace quillo::test
