#include "base/ddi.h"

#include <array>

#include "capture/hooks.h"
#include "capture/packed_surface.h"
#include "host/engine/services/brushes.h"
#include "host/engine/services/clips.h"
#include "host/engine/services/colors.h"
#include "host/engine/services/surfaces.h"
#include "support/capture_fixture.h"

namespace quillo {
namespace {

// The pictures are 3 x 2 pixels; these are their packed forms on the test's device.
const std::string kHeader24 =
    "2800000003000000020000000100180000000000"
    "00000000c05d0000e02e00000000000000000000"
    "00000000";
const std::string kHeader1 =
    "2800000003000000020000000100010000000000"
    "00000000c05d0000e02e00000000000000000000";
const std::string kMaskColours = "00ffff00ffffff00";
const std::string kRow0 = "0102030405060708090a0b0c", kRow1 = "0d0e0f101112131415161718";
const std::string kMaskBits = "a000000040000000";
const std::string kPacked = "[" + kHeader24 + kRow0 + kRow1 + "]\n";
const std::string kPackedBoth =
    "[" + kHeader24 + kRow0 + kRow1 + kHeader1 + kMaskColours + kMaskBits + "]\n";
const std::string kZeros = "[" + std::string(2 * 52, '0') + "]\n";

const std::string kClip = "BEGINPATH\nRECTANGLE 1 1 5 5\nENDPATH\nSELECTCLIPPATH\n";
const std::string kBrush = "CREATEBRUSH 0 0x332211 0 0 0 [00]\n";

class BlitTest : public test::CaptureTest {
 protected:
  RECTL target_rect_ = {1, 2, 4, 4};
  RECTL source_rect_ = {0, 0, 3, 2};
  POINTL source_origin_ = {5, 6};
  POINTL mask_origin_ = {7, 8};
  POINTL brush_origin_ = {9, 10};
  std::array<uint8_t, 24> bits_ = {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12,
                                   13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24};
  std::array<uint8_t, 8> mask_bits_ = {0xA0, 0, 0, 0, 0x40, 0, 0, 0};
  host::Surface source_{{3, 2}, BMF_24BPP, false, bits_.data(), 24, 12};
  host::Surface mask_{{3, 2}, BMF_1BPP, false, mask_bits_.data(), 8, 4};
  host::Surface no_bits_{{3, 2}, BMF_24BPP, false, nullptr, 8, 12};
  host::Surface no_format_{{3, 2}, BMF_JPEG, false, bits_.data(), 24, 12};
  host::BrushObject brush_{0x112233};
  host::ClipObject clip_{DC_RECT, {2, 2, 4, 4}};

  std::string BitBlt(SURFOBJ* source, SURFOBJ* mask, ROP4 rop4, BRUSHOBJ* brush = nullptr) {
    EXPECT_TRUE(quillo::DrvBitBlt(&surface_, source, mask, &clip_, nullptr, &target_rect_,
                                  &source_origin_, &mask_origin_, brush, &brush_origin_, rop4));
    return TakeDrawing();
  }
  std::string StretchBlt(SURFOBJ* source, SURFOBJ* mask, COLORADJUSTMENT* adjustment = nullptr) {
    EXPECT_TRUE(quillo::DrvStretchBlt(&surface_, source, mask, &clip_, nullptr, adjustment, nullptr,
                                      &target_rect_, &source_rect_, nullptr, HALFTONE));
    return TakeDrawing();
  }
  std::string CopyBits(SURFOBJ* source, CLIPOBJ* clip, XLATEOBJ* translation = nullptr) {
    EXPECT_TRUE(
        quillo::DrvCopyBits(&surface_, source, clip, translation, &target_rect_, &source_origin_));
    return TakeDrawing();
  }
  std::string AlphaBlend(SURFOBJ* source, BLENDOBJ* blend) {
    EXPECT_TRUE(quillo::DrvAlphaBlend(&surface_, source, &clip_, nullptr, &target_rect_,
                                      &source_rect_, blend));
    return TakeDrawing();
  }
};

TEST_F(BlitTest, BitBlt_SourceAndMaskChooseTheRecord) {
  const std::string brush = kBrush + "SETBRUSHORG 9 10\n";
  EXPECT_EQ(BitBlt(nullptr, nullptr, 0xF0F0, &brush_), brush + kClip + "PATBLT 1 2 4 4 0xf00021\n");
  EXPECT_EQ(BitBlt(nullptr, &mask_, 0xAACC), kClip + "PATBLT 1 2 4 4 0xcc0020\n");
  EXPECT_EQ(BitBlt(&source_, nullptr, 0xCCCC, &brush_),
            brush + kClip + "BITBLT 1 2 4 4 5 6 0xcc0020 32 " + kPacked);
  EXPECT_EQ(BitBlt(&source_, &mask_, 0xAACC),
            kClip + "MASKBLT 1 2 4 4 5 6 7 8 0xaacc 112 44 " + kPackedBoth);
}

TEST_F(BlitTest, CopyAndBlend_CarryTheSource) {
  BLENDOBJ blend = {{1, 2, 3, 4}};
  EXPECT_EQ(CopyBits(&source_, &clip_), kClip + "SETDIBITSTODEVICE 1 2 4 4 5 6 28 " + kPacked);
  EXPECT_EQ(AlphaBlend(&source_, &blend),
            kClip + "ALPHABLEND 1 2 4 4 0 0 3 2 0x4030201 40 " + kPacked);
}

// Without bits the plain copies carry zeros and the others are dropped; without a packed format
// there is no size, and no record at all.
TEST_F(BlitTest, WhatCannotBePacked_DiffersByRecord) {
  BLENDOBJ blend = {{1, 2, 3, 4}};
  EXPECT_EQ(BitBlt(&no_bits_, nullptr, 0xCCCC), kClip + "BITBLT 1 2 4 4 5 6 0xcc0020 32 " + kZeros);
  EXPECT_EQ(CopyBits(&no_bits_, &clip_), kClip + "SETDIBITSTODEVICE 1 2 4 4 5 6 28 " + kZeros);
  EXPECT_EQ(BitBlt(&no_bits_, &mask_, 0xAACC), kClip);
  EXPECT_EQ(BitBlt(&source_, &no_bits_, 0xAACC), kClip);
  EXPECT_EQ(AlphaBlend(&no_bits_, &blend), kClip);
  EXPECT_EQ(StretchBlt(&no_bits_, nullptr), kClip);
  EXPECT_EQ(BitBlt(&no_format_, nullptr, 0xCCCC), kClip);
  EXPECT_EQ(BitBlt(&no_format_, &mask_, 0xAACC), kClip);
  for (SURFOBJ* source : {static_cast<SURFOBJ*>(&no_format_), static_cast<SURFOBJ*>(nullptr)}) {
    EXPECT_EQ(CopyBits(source, &clip_), kClip);
    EXPECT_EQ(AlphaBlend(source, &blend), kClip);
    EXPECT_EQ(StretchBlt(source, nullptr), kClip);
  }
}

TEST_F(BlitTest, NullArguments_ReadAsNothing) {
  EXPECT_TRUE(quillo::DrvBitBlt(&surface_, &source_, &mask_, nullptr, nullptr, nullptr, nullptr,
                                nullptr, &brush_, nullptr, 0xAACC));
  EXPECT_EQ(TakeDrawing(), kBrush + "MASKBLT 0 0 0 0 0 0 0 0 0xaacc 112 44 " + kPackedBoth);
  EXPECT_TRUE(quillo::DrvPaint(&surface_, nullptr, nullptr, nullptr, R2_COPYPEN));
  EXPECT_EQ(TakeDrawing(), "SETROP2 13\nFILLRECT 0 0 200 100\n");
  EXPECT_EQ(AlphaBlend(&source_, nullptr), kClip);
}

TEST_F(BlitTest, Paint_FillsTheBoundsOfTheClip) {
  EXPECT_TRUE(quillo::DrvPaint(&surface_, &clip_, &brush_, &brush_origin_, 0x0D10));
  EXPECT_EQ(TakeDrawing(),
            kBrush + "SETBRUSHORG 9 10\nSETROP2 16\n" + kClip + "FILLRECT 2 2 4 4\n");
}

TEST_F(BlitTest, StretchBlt_StreamsTheSource) {
  const std::string record = kClip + "STRETCHBLT 1 2 4 4 0 0 3 2 ";
  COLORADJUSTMENT adjustment = {24, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
  EXPECT_EQ(StretchBlt(&source_, nullptr), record + "0 0x0 0x0 0x0 0x0 0x0 0x0 4 68 " + kPacked);
  EXPECT_EQ(StretchBlt(&source_, nullptr, &adjustment),
            record + "1 0x10018 0x30002 0x50004 0x70006 0x90008 0xb000a 4 68 " + kPacked);
  EXPECT_EQ(StretchBlt(&source_, &mask_), kClip);
  source_.fjBitmap |= BMF_TOPDOWN;
  EXPECT_EQ(StretchBlt(&source_, nullptr),
            record + "0 0x0 0x0 0x0 0x0 0x0 0x0 4 68 [" + kHeader24 + kRow1 + kRow0 + "]\n");
  source_.cjBits = 23;  // the last row is cut off: still a picture of two rows
  EXPECT_EQ(StretchBlt(&source_, nullptr), record + "0 0x0 0x0 0x0 0x0 0x0 0x0 4 68 [" + kHeader24 +
                                               kRow1.substr(0, 22) + "00" + kRow0 + "]\n");
}

TEST_F(BlitTest, CopyBits_FromTheDevice_IsWhite) {
  SURFOBJ device_source = {};
  device_source.iType = STYPE_DEVICE;
  RECTL rect = {0, 0, 2, 1};
  EXPECT_TRUE(
      quillo::DrvCopyBits(&source_, &device_source, nullptr, nullptr, &rect, &source_origin_));
  EXPECT_EQ(bits_[11], 12);  // the upper row is the second one in memory
  EXPECT_EQ(bits_[12], 0xFF);
  EXPECT_EQ(bits_[17], 0xFF);
  EXPECT_EQ(bits_[18], 19);
  EXPECT_EQ(TakeRecords(), "");
}

TEST_F(BlitTest, ColourTable_ComesFromTheTranslation) {
  host::XlateObject full({0x00332211, 0x00665544});
  host::XlateObject vectorless = full;
  vectorless.pulXlate = nullptr;
  host::XlateObject palette = vectorless;
  palette.flXlate = 0;
  host::XlateObject shorter({0x00332211});
  host::XlateObject longer({0x00332211, 0x00665544, 0x00998877});
  const std::string both = "1122330044556600";
  const std::pair<XLATEOBJ*, std::string> cases[] = {
      {nullptr, kMaskColours}, {&full, both},   {&vectorless, both},
      {&palette, both},        {&longer, both}, {&shorter, "1122330000000000"}};
  const auto record = [](const std::string& table) {
    return "SETDIBITSTODEVICE 1 2 4 4 5 6 28 [" + kHeader1 + table + kMaskBits + "]\n";
  };
  for (const auto& [translation, table] : cases) {
    EXPECT_EQ(CopyBits(&mask_, nullptr, translation), record(table));
  }
}

TEST_F(BlitTest, SurfaceToPackedBitmap_SizesAndRefusals) {
  std::array<std::byte, 68> packed = {};
  uint32_t size = 0;
  EXPECT_TRUE(SurfaceToPackedBitmap(nullptr, &source_, nullptr, nullptr, size));
  EXPECT_EQ(size, packed.size());
  EXPECT_TRUE(SurfaceToPackedBitmap(nullptr, &source_, nullptr, packed.data(), size));
  EXPECT_EQ(LoadOrZero<int32_t>(packed, 24), 6000);
  size = 67;
  EXPECT_FALSE(SurfaceToPackedBitmap(nullptr, &source_, nullptr, packed.data(), size));
  EXPECT_FALSE(SurfaceToPackedBitmap(nullptr, &no_bits_, nullptr, nullptr, size));
  EXPECT_EQ(size, 0u);
  EXPECT_EQ(PackedBitmapSize(&no_bits_), 52u);
}

}  // namespace
}  // namespace quillo
