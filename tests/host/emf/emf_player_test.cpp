#include "host/emf_player/emf_player.h"

#include <gtest/gtest.h>

#include "host/base/com_apartment.h"
#include "host/emf/metafile_builder.h"
#include "host/emf/metafile_script.h"
#include "tests/host/engine/graphics_fixture.h"

namespace quillo::host::emf {
namespace {

/// A page of 1000 by 1000 pixels on a fake driver that takes curves.
class Player : public GraphicsTest {
 protected:
  Player() {
    driver_.graphics_caps = GCAPS_BEZIERS;
    driver_.size = {1000, 1000};
    surface_ = Surface::Allocate(driver_.size, BMF_24BPP, false, 0);
    surface_->hooks = driver_.hooks;
  }

  /// What becomes of a metafile, in a script's words.
  std::string Play(const std::vector<std::byte>& metafile, const Transform& to_page = {},
                   const PlayOptions& options = {}) {
    driver_.calls.clear();
    MetafileReader reader(metafile);
    Graphics page = Page();
    result_ = EmfPlayer(reader, to_page, page, options).Play();
    std::string lines;
    for (const std::string& call : driver_.calls) lines += "> " + call + "\n";
    for (const MetafileFault& fault : reader.faults()) lines += "! " + Describe(fault) + "\n";
    for (const auto& [name, count] : result_.not_carried) {
      lines += "- " + name + " " + std::to_string(count) + "\n";
    }
    for (const auto& [name, count] : page.Calls().refused) {
      lines += "- " + name + " " + std::to_string(count) + "\n";
    }
    return lines;
  }
  std::string Play(uint32_t type, const std::vector<uint32_t>& payload) {
    MetafileBuilder metafile;
    metafile.Add(type, payload);
    return Play(metafile.Finish());
  }

  PlayResult result_;

 private:
  const ComApartment apartment_;
};

TEST_F(Player, Scripts_GiveTheirCallsAndFaults) {
  for (const char* name : {"lines.txt", "driver.txt", "state.txt", "pens_brushes.txt",
                           "paths_clips.txt", "bitmaps.txt", "text.txt", "damaged.txt"}) {
    for (const ScriptCase& c : ReadScript(name)) {
      driver_.refusing = c.refusing;
      driver_.graphics_caps = c.curves ? GCAPS_BEZIERS : 0;
      EXPECT_EQ(Play(c.metafile, c.to_page), c.expected) << c.place;
    }
  }
}

TEST_F(Player, EveryTruncationOfARecord_DrawsNothingOutsideItsBytes) {
  // Arrays and offsets of these lie where the payload says; cut short, they must be refused.
  const std::pair<uint32_t, std::vector<uint32_t>> records[] = {
      {kEmrPOLYLINE, {0, 0, 0, 0, 3, 1, 2, 3, 4, 5, 6}},
      {kEmrPOLYPOLYGON16, {0, 0, 0, 0, 1, 3, 3, 0x20001, 0x40003, 0x60005}},
      {kEmrPOLYDRAW, {0, 0, 0, 0, 1, 1, 2, PT_MOVETO}},
      {kEmrEXTSELECTCLIPRGN, {48, RGN_COPY, 32, 1, 1, 16, 0, 0, 9, 9, 0, 0, 9, 9}},
      {kEmrPAINTRGN, {0, 0, 0, 0, 48, 32, 1, 1, 16, 0, 0, 9, 9, 0, 0, 9, 9}},
      {kEmrCREATEPALETTE, {1, 0x300 | 2 << 16, 5, 6}},
      {kEmrEXTCREATEPEN, {1, 0, 0, 0, 0, PS_USERSTYLE, 1, 0, 0, 0, 2, 3, 4}},
  };
  for (auto [type, payload] : records) {
    EXPECT_EQ(Play(type, payload).find('!'), std::string::npos) << RecordName(type);
    while (!payload.empty()) {
      payload.pop_back();
      EXPECT_TRUE(Play(type, payload).starts_with("! ")) << RecordName(type) << payload.size();
    }
  }
}

TEST_F(Player, EndlessWork_EndsWithAFault) {
  // A clip of 2000 squares, and 5000 lines that each take it along.
  std::vector<uint32_t> region = {32 + 16 * 2000, RGN_COPY, 32, 1, 2000, 16 * 2000, 0, 0, 9, 9};
  for (uint32_t i = 0; i < 2000; ++i) {
    region.insert(region.end(), {i % 50 * 4, i / 50 * 4, i % 50 * 4 + 2, i / 50 * 4 + 2});
  }
  MetafileBuilder lines;
  lines.Add(kEmrEXTSELECTCLIPRGN, region);
  for (int i = 0; i < 5000; ++i) lines.Add(kEmrLINETO, {10, 20});
  EXPECT_NE(Play(lines.Finish()).find("asks for too much work"), std::string::npos);
  EXPECT_LT(driver_.calls.size(), 4000u);

  // A polygon whose edges cross the whole sheet a thousand times.
  std::vector<uint32_t> zigzag = {0, 0, 0, 0, 1000};
  for (uint32_t i = 0; i < 1000; ++i) zigzag.insert(zigzag.end(), {i, i % 2 * 6000});
  EXPECT_NE(Play(kEmrPOLYGON, zigzag).find("too intricate"), std::string::npos);

  // As a line it is drawn in parts.
  driver_.calls.clear();
  EXPECT_EQ(Play(kEmrPOLYLINE, zigzag).find('!'), std::string::npos);
  EXPECT_GT(driver_.calls.size(), 50u);

  // Holes that make a clip of ever more rectangles, one saved state each.
  MetafileBuilder holes;
  for (uint32_t i = 0; i < 8000; ++i) {
    const uint32_t x = i * 37 % 4000, y = i * 91 % 6000;
    holes.Add(kEmrSAVEDC);
    holes.Add(kEmrEXCLUDECLIPRECT, {x, y, x + 20, y + 20});
  }
  EXPECT_NE(Play(holes.Finish()).find("asks for too much work"), std::string::npos);

  MetafileBuilder saves;
  for (int i = 0; i <= 10000; ++i) saves.Add(kEmrSAVEDC);
  EXPECT_EQ(Play(saves.Finish()), "! record 10002 (EMR_SAVEDC): too many saved states\n");
}

TEST_F(Player, GlyphIndexes_NeedTheirFontOrItsOrder) {
  for (const ScriptCase& c : ReadScript("missing_font.txt")) {
    const struct {
      GlyphOrder order;
      uint64_t dropped;
      std::string expected;
    } orders[] = {
        {GlyphOrder::kAssume, 0, c.expected},
        {GlyphOrder::kAsSubstitute, 1,
         "> GetGlyphMode\n> TextOut D accel 102, solid 0, at 10,20, em 20 0 0 20\n"},
        {GlyphOrder::kDrop, 2, "- EMR_EXTTEXTOUTW 1\n"},
    };
    for (const auto& test : orders) {
      EXPECT_EQ(Play(c.metafile, {}, {test.order}), test.expected);
      const FontUse& use = result_.fonts.at(L"Nowhere Sans");
      EXPECT_TRUE(use.substituted);
      EXPECT_EQ(use.assumed_glyphs, 2 - test.dropped);
      EXPECT_EQ(use.dropped_glyphs, test.dropped);
    }
  }
}

}  // namespace
}  // namespace quillo::host::emf
