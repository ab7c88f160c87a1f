#include "host/pdf/mixing.h"

#include <gtest/gtest.h>

namespace quillo::host::pdf {
namespace {

/// A channel of the page, 0 to 255, under the layers of one pixel as PDF blends them.
uint32_t Drawn(const Layers& layers, uint32_t page) {
  for (const Layers::Layer& layer : layers.list) {
    const uint32_t channel = layer.pixels[0] & 0xFF;
    switch (layer.blend) {
      case Blend::kNormal:
        if (layer.pixels[0] >> 24 != 0) page = channel;
        break;
      case Blend::kMultiply:
        page = page * channel / 255;
        break;
      case Blend::kScreen:
        page = 255 - (255 - page) * (255 - channel) / 255;
        break;
      case Blend::kDifference:
        page = page > channel ? page - channel : channel - page;
        break;
    }
  }
  return page;
}

// Each operation, bit by bit, beside its layers; white and black mix exactly with any page.
TEST(Mixing, Layers_DoWhatEveryOperationDoes) {
  for (uint32_t rop3 = 0; rop3 < 256; ++rop3) {
    for (const uint32_t brush : {0x00u, 0xFFu}) {
      for (const uint32_t source : {0x00u, 0xFFu}) {
        for (const uint32_t page : {0x00u, 0x5Au, 0xFFu}) {
          uint32_t expected = 0;
          for (uint32_t bit = 0; bit < 8; ++bit) {
            const uint32_t index =
                (brush >> bit & 1) * 4 + (source >> bit & 1) * 2 + (page >> bit & 1);
            expected |= (rop3 >> index & 1) << bit;
          }
          const Layers layers =
              LayersOf({MixingOf(static_cast<uint8_t>(rop3), brush * 0x10101, source * 0x10101)});
          EXPECT_TRUE(layers.exact);
          EXPECT_EQ(Drawn(layers, page), expected) << rop3 << " " << brush << " " << source;
        }
      }
    }
  }
}

TEST(Mixing, BinaryOperations_AreTernaryOnes) {
  constexpr uint8_t kExpected[] = {0x00, 0x05, 0x0A, 0x0F, 0x50, 0x55, 0x5A, 0x5F,
                                   0xA0, 0xA5, 0xAA, 0xAF, 0xF0, 0xF5, 0xFA, 0xFF};
  for (uint8_t rop2 = 1; rop2 <= 16; ++rop2) EXPECT_EQ(TernaryOf(rop2), kExpected[rop2 - 1]);
  EXPECT_EQ(NameOfRop2(7), "R2_XORPEN");
  EXPECT_EQ(NameOfRop3(0x66), "SRCINVERT");
  EXPECT_EQ(NameOfRop3(0xB8), "ROP3 0xB8");
}

TEST(Mixing, ColoursBetween_AreExactOnlyWhereThePageDoesNotMatter) {
  const auto exact = [](uint8_t rop3) { return LayersOf({MixingOf(rop3, 0x808080, 0)}).exact; };
  EXPECT_TRUE(exact(0xF0));
  EXPECT_FALSE(exact(0x5A));
  const Layers masked = LayersOf({MixingOf(0xCC, 0, 0x123456), MixingOf(0xAA, 0, 0)});
  EXPECT_TRUE(masked.exact);
  EXPECT_EQ(masked.list[0].pixels, (std::vector<uint32_t>{0xFF123456, 0}));
}

}  // namespace
}  // namespace quillo::host::pdf
