#include "host/printing/report.h"

#include <gtest/gtest.h>

namespace quillo::host {
namespace {

TEST(LossesOf, EveryReasonIsCounted) {
  PageReport page;
  page.drawn.remarks = {"odd"};
  EXPECT_TRUE(LossesOf(page).empty());
  page.drawn.faults = {"damaged"};
  page.drawn.not_carried = {{"EMR_PLGBLT", 2}, {"EMF+", 1}};
  page.drawn.substitutions = {"another font"};
  page.drawn.fonts[L"Nowhere"] = {.used = L"Sans", .assumed_glyphs = 3, .dropped_glyphs = 4};
  page.drawn.fonts[L"Odd"] = {.used = L"Symbols", .dropped_glyphs = 8, .reversible = false};
  page.calls.refused = {{"DrvPaint", 5}};
  page.calls.unmade = {{"DrvBitBlt", 6}};
  page.content.lost_characters = {{"Sans", 7}};
  const char* const expected[] = {"1 EMF+, 2 EMR_PLGBLT",
                                  "3 glyph",
                                  "4 glyph numbers mean nothing without it (--assume-glyph-order",
                                  "8 glyph numbers mean nothing without it (those of \"Symbols\"",
                                  "driver refused to draw: 5 DrvPaint",
                                  "left out by the print host",
                                  "7 glyphs of \"Sans\"",
                                  "damaged",
                                  "another font"};
  const std::vector<Loss> losses = LossesOf(page);
  ASSERT_EQ(losses.size(), std::size(expected));
  for (size_t i = 0; i < losses.size(); ++i) {
    EXPECT_NE(losses[i].what.find(expected[i]), std::string::npos) << losses[i].what;
    EXPECT_EQ(losses[i].kind == Loss::Kind::kSubstituted, i == 8) << losses[i].what;
  }
}

}  // namespace
}  // namespace quillo::host
