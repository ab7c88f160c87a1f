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

// Header of a packed bitmap on the test's device, in hexadecimal, up to the pels per metre.
std::string Head(uint8_t width, uint8_t height, uint8_t bit_count) {
  char text[81];
  std::snprintf(text, sizeof text, "28000000%02x000000%02x0000000100%02x000000000000000000", width,
                height, bit_count);
  return text + std::string("c05d0000e02e00000000000000000000");
}

constexpr char kMaskColours[] = "00ffff00ffffff00";

class BlitTest : public test::CaptureTest {
 protected:
  // Everything that the hooks take, as a drawing of a 3 x 2 picture of 24 bits.
  RECTL target_rect_ = {1, 2, 4, 4};
  RECTL source_rect_ = {0, 0, 3, 2};
  POINTL source_origin_ = {5, 6};
  POINTL mask_origin_ = {7, 8};
  POINTL brush_origin_ = {9, 10};
  std::array<uint8_t, 24> bits_ = {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12,
                                   13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24};
  std::array<uint8_t, 8> mask_bits_ = {0xA0, 0, 0, 0, 0x40, 0, 0, 0};
  host::Surface source_{{3, 2}, BMF_24BPP, false, bits_.data(), 24, 12};
  host::Surface boundless_{{3, 2}, BMF_24BPP, false, nullptr, 8, 12};
  host::Surface jpeg_{{3, 2}, BMF_JPEG, false, bits_.data(), 24, 12};
  host::Surface mask_{{3, 2}, BMF_1BPP, false, mask_bits_.data(), 8, 4};
  host::BrushObject brush_{0x112233};
  host::ClipObject cutting_{DC_RECT, {2, 2, 4, 4}};

  const std::string packed_ =
      Head(3, 2, 24) + "00000000" + "0102030405060708090a0b0c" + "0d0e0f101112131415161718";
  const std::string packed_mask_ = Head(3, 2, 1) + kMaskColours + "a000000040000000";
  const std::string clip_records_ =
      "REC_BEGINPATH\nREC_RECTANGLE 1 1 5 5\nREC_ENDPATH\nREC_SELECTCLIPPATH\n";

  std::string BitBlt(SURFOBJ* source, SURFOBJ* mask, ROP4 rop4, BRUSHOBJ* brush = nullptr) {
    EXPECT_TRUE(quillo::DrvBitBlt(&surface_, source, mask, &cutting_, nullptr, &target_rect_,
                                  &source_origin_, &mask_origin_, brush, &brush_origin_, rop4));
    return TakeDrawing();
  }
};

TEST_F(BlitTest, BitBlt_SourceAndMaskChooseTheRecord) {
  const std::string brush = "REC_CREATEBRUSH 0 0x332211 0 0 0 [00]\nREC_SETBRUSHORG 9 10\n";
  EXPECT_EQ(BitBlt(nullptr, nullptr, 0xF0F0, &brush_),
            brush + clip_records_ + "REC_PATBLT 1 2 4 4 0xf00021\n");
  EXPECT_EQ(BitBlt(nullptr, &mask_, 0xAACC), clip_records_ + "REC_PATBLT 1 2 4 4 0xcc0020\n");
  EXPECT_EQ(BitBlt(&source_, nullptr, 0xCCCC, &brush_),
            brush + clip_records_ + "REC_BITBLT 1 2 4 4 5 6 0xcc0020 32 [" + packed_ + "]\n");
  EXPECT_EQ(BitBlt(&source_, &mask_, 0xAACC), clip_records_ +
                                                  "REC_MASKBLT 1 2 4 4 5 6 7 8 0xaacc 112 44 [" +
                                                  packed_ + packed_mask_ + "]\n");
}

TEST_F(BlitTest, BitBlt_WhatCannotBePacked) {
  // Without bits: the plain copy carries zeros, the masked one is dropped.
  EXPECT_EQ(
      BitBlt(&boundless_, nullptr, 0xCCCC),
      clip_records_ + "REC_BITBLT 1 2 4 4 5 6 0xcc0020 32 [" + std::string(2 * 52, '0') + "]\n");
  EXPECT_EQ(BitBlt(&boundless_, &mask_, 0xAACC), clip_records_);
  EXPECT_EQ(BitBlt(&source_, &boundless_, 0xAACC), clip_records_);
  // Without a packed format there is no size, and no record at all.
  EXPECT_EQ(BitBlt(&jpeg_, nullptr, 0xCCCC), clip_records_);
  EXPECT_EQ(BitBlt(&jpeg_, &mask_, 0xAACC), clip_records_);
}

TEST_F(BlitTest, BitBlt_NullArguments_ReadAsNothing) {
  EXPECT_TRUE(quillo::DrvBitBlt(&surface_, &source_, &mask_, nullptr, nullptr, nullptr, nullptr,
                                nullptr, &brush_, nullptr, 0xAACC));
  EXPECT_EQ(TakeDrawing(),
            "REC_CREATEBRUSH 0 0x332211 0 0 0 [00]\nREC_MASKBLT 0 0 0 0 0 0 0 0 0xaacc 112 44 [" +
                packed_ + packed_mask_ + "]\n");
}

TEST_F(BlitTest, Paint_FillsTheBoundsOfTheClip) {
  const std::string brush = "REC_CREATEBRUSH 0 0x332211 0 0 0 [00]\n";
  EXPECT_TRUE(quillo::DrvPaint(&surface_, &cutting_, &brush_, &brush_origin_, 0x0D10));
  EXPECT_EQ(TakeDrawing(), brush + "REC_SETBRUSHORG 9 10\nREC_SETROP2 16\n" + clip_records_ +
                               "REC_FILLRECT 2 2 4 4\n");
  EXPECT_TRUE(quillo::DrvPaint(&surface_, nullptr, nullptr, nullptr, R2_COPYPEN));
  EXPECT_EQ(TakeDrawing(), "REC_SETROP2 13\nREC_FILLRECT 0 0 200 100\n");
}

TEST_F(BlitTest, StretchBlt_StreamsTheSource) {
  const auto stretch = [this](SURFOBJ* source, SURFOBJ* mask, COLORADJUSTMENT* adjustment) {
    EXPECT_TRUE(quillo::DrvStretchBlt(&surface_, source, mask, &cutting_, nullptr, adjustment,
                                      nullptr, &target_rect_, &source_rect_, nullptr, HALFTONE));
    return TakeDrawing();
  };
  COLORADJUSTMENT adjustment = {24, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
  EXPECT_EQ(stretch(&source_, nullptr, nullptr),
            clip_records_ + "REC_STRETCHBLT 1 2 4 4 0 0 3 2 0 0x0 0x0 0x0 0x0 0x0 0x0 4 68 [" +
                packed_ + "]\n");
  EXPECT_EQ(stretch(&source_, nullptr, &adjustment),
            clip_records_ +
                "REC_STRETCHBLT 1 2 4 4 0 0 3 2 1 0x10018 0x30002 0x50004 0x70006 0x90008 0xb000a"
                " 4 68 [" +
                packed_ + "]\n");
  source_.fjBitmap |= BMF_TOPDOWN;
  EXPECT_EQ(stretch(&source_, nullptr, nullptr),
            clip_records_ + "REC_STRETCHBLT 1 2 4 4 0 0 3 2 0 0x0 0x0 0x0 0x0 0x0 0x0 4 68 [" +
                Head(3, 2, 24) + "00000000" + "0d0e0f101112131415161718" +
                "0102030405060708090a0b0c" + "]\n");
  // A record whose bitmap could not follow would swallow the records behind it.
  source_.sizlBitmap.cy = 3;
  for (SURFOBJ* source : {static_cast<SURFOBJ*>(nullptr), static_cast<SURFOBJ*>(&source_),
                          static_cast<SURFOBJ*>(&boundless_), static_cast<SURFOBJ*>(&jpeg_)}) {
    EXPECT_EQ(stretch(source, nullptr, nullptr), clip_records_);
  }
  EXPECT_EQ(stretch(&mask_, &mask_, nullptr), clip_records_);
}

TEST_F(BlitTest, CopyBits_SourceKinds) {
  const auto copy = [this](SURFOBJ* source) {
    EXPECT_TRUE(
        quillo::DrvCopyBits(&surface_, source, &cutting_, nullptr, &target_rect_, &source_origin_));
    return TakeDrawing();
  };
  EXPECT_EQ(copy(&source_),
            clip_records_ + "REC_SETDIBITSTODEVICE 1 2 4 4 5 6 28 [" + packed_ + "]\n");
  EXPECT_EQ(copy(&boundless_), clip_records_ + "REC_SETDIBITSTODEVICE 1 2 4 4 5 6 28 [" +
                                   std::string(2 * 52, '0') + "]\n");
  EXPECT_EQ(copy(&jpeg_), clip_records_);
  EXPECT_EQ(copy(nullptr), clip_records_);
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

TEST_F(BlitTest, CopyBits_NoDevice_InvalidParameter) {
  SetLastError(0);
  EXPECT_FALSE(
      quillo::DrvCopyBits(&source_, &source_, nullptr, nullptr, &target_rect_, &source_origin_));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

TEST_F(BlitTest, AlphaBlend_DroppedWithoutBits) {
  BLENDOBJ blend = {{1, 2, 3, 4}};
  const auto alpha_blend = [this](SURFOBJ* source, BLENDOBJ* object) {
    EXPECT_TRUE(quillo::DrvAlphaBlend(&surface_, source, &cutting_, nullptr, &target_rect_,
                                      &source_rect_, object));
    return TakeDrawing();
  };
  EXPECT_EQ(alpha_blend(&source_, &blend),
            clip_records_ + "REC_ALPHABLEND 1 2 4 4 0 0 3 2 0x4030201 40 [" + packed_ + "]\n");
  EXPECT_EQ(alpha_blend(&boundless_, &blend), clip_records_);
  EXPECT_EQ(alpha_blend(&jpeg_, &blend), clip_records_);
  EXPECT_EQ(alpha_blend(nullptr, &blend), clip_records_);
  EXPECT_EQ(alpha_blend(&source_, nullptr), clip_records_);
}

// The colour table of a 1-bit picture, as it is packed with a translation object.
TEST_F(BlitTest, ColourTable_ComesFromTheTranslation) {
  host::XlateObject full({0x00332211, 0x00665544});
  host::XlateObject vectorless = full;
  vectorless.pulXlate = nullptr;
  host::XlateObject palette = vectorless;
  palette.flXlate = 0;
  host::XlateObject shorter({0x00332211});
  host::XlateObject longer({0x00332211, 0x00665544, 0x00998877});
  const struct {
    XLATEOBJ* translation;
    const char* table;
  } cases[] = {{nullptr, kMaskColours},           {&full, "1122330044556600"},
               {&vectorless, "1122330044556600"}, {&palette, "1122330044556600"},
               {&shorter, "1122330000000000"},    {&longer, "1122330044556600"}};
  for (const auto& c : cases) {
    EXPECT_TRUE(quillo::DrvCopyBits(&surface_, &mask_, nullptr, c.translation, &target_rect_,
                                    &source_origin_));
    EXPECT_EQ(TakeDrawing(), "REC_SETDIBITSTODEVICE 1 2 4 4 5 6 28 [" + Head(3, 2, 1) + c.table +
                                 "a000000040000000]\n");
  }
}

TEST_F(BlitTest, SurfaceToPackedBitmap_SizesAndRefusals) {
  EXPECT_EQ(PackedBitmapSize(nullptr), 0u);
  EXPECT_EQ(PackedBitmapSize(&boundless_), 52u);
  uint32_t size = 0;
  EXPECT_TRUE(SurfaceToPackedBitmap(nullptr, &source_, nullptr, nullptr, size));
  EXPECT_EQ(size, 68u);
  std::array<std::byte, 68> packed = {};
  EXPECT_TRUE(SurfaceToPackedBitmap(nullptr, &source_, nullptr, packed.data(), size));
  EXPECT_EQ(LoadOrZero<int32_t>(packed, 24), 6000);
  size = 67;
  EXPECT_FALSE(SurfaceToPackedBitmap(nullptr, &source_, nullptr, packed.data(), size));
  EXPECT_FALSE(SurfaceToPackedBitmap(nullptr, &boundless_, nullptr, nullptr, size));
  EXPECT_EQ(size, 0u);
}

}  // namespace
}  // namespace quillo
