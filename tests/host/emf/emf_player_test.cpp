#include "host/emf_player/emf_player.h"

#include <gtest/gtest.h>

#include "host/base/com_apartment.h"
#include "host/base/text.h"
#include "host/emf/metafile_builder.h"
#include "host/emf/metafile_script.h"
#include "support/line.h"
#include "tests/host/engine/fake_driver.h"

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
    const PlayResult result = EmfPlayer(reader, to_page, page, options).Play();
    std::string lines;
    for (const std::string& call : driver_.calls) lines += "> " + call + "\n";
    for (const MetafileFault& fault : reader.faults()) lines += "! " + Describe(fault) + "\n";
    for (const auto& losses : {result.not_carried, page.Calls().refused}) {
      for (const auto& [name, count] : losses) lines += test::Line("- ", name, " ", count, "\n");
    }
    for (const auto& [face, use] : result.fonts) {
      if (use.assumed_glyphs + use.dropped_glyphs == 0) continue;
      lines += test::Line("- ", ToUtf8(face), " assumed ", use.assumed_glyphs, ", dropped ",
                          use.dropped_glyphs, "\n");
    }
    return lines;
  }
  std::string Play(uint32_t type, const std::vector<uint32_t>& payload) {
    MetafileBuilder metafile;
    metafile.Add(type, payload);
    return Play(metafile.Finish());
  }

 private:
  const ComApartment apartment_;
};

GlyphOrder GlyphOrderOf(const std::string& name) {
  return name == "assume" ? GlyphOrder::kAssume
         : name == "drop" ? GlyphOrder::kDrop
                          : GlyphOrder::kAsSubstitute;
}

TEST_F(Player, Scripts_GiveTheirCallsAndFaults) {
  for (const std::string name :
       {"lines", "driver", "state", "pens_brushes", "paths_clips", "bitmaps", "text", "damaged"}) {
    for (const ScriptCase& c : ReadScript("emf/" + name + ".txt")) {
      driver_.refusing = c.refusing;
      driver_.graphics_caps = c.curves ? GCAPS_BEZIERS : 0;
      EXPECT_EQ(Play(c.metafile, c.to_page, {GlyphOrderOf(c.glyph_order)}), c.expected) << c.place;
    }
  }
}

TEST_F(Player, EveryTruncationOfARecord_IsRefused) {
  for (const ScriptCase& c : ReadScript("emf/truncated.txt")) {
    EXPECT_EQ(Play(c.metafile).find('!'), std::string::npos) << c.place;
    MetafileReader reader(c.metafile);
    reader.Next();
    const Record whole = *reader.Next();
    for (size_t size = whole.bytes.size() - 4; size >= 8; size -= 4) {
      std::vector<uint32_t> payload(size / 4 - 2);
      std::memcpy(payload.data(), whole.bytes.data() + 8, size - 8);
      EXPECT_TRUE(Play(whole.type, payload).starts_with("! ")) << c.place << " " << size;
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
  EXPECT_NE(Play(lines.Finish()).find("takes too long to draw"), std::string::npos);
  EXPECT_LT(driver_.calls.size(), 4000u);

  // A polygon whose edges cross the whole sheet a thousand times.
  std::vector<uint32_t> zigzag = {0, 0, 0, 0, 1000};
  for (uint32_t i = 0; i < 1000; ++i) zigzag.insert(zigzag.end(), {i, i % 2 * 6000});
  EXPECT_NE(Play(kEmrPOLYGON, zigzag).find("too complex"), std::string::npos);

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
  EXPECT_NE(Play(holes.Finish()).find("takes too long to draw"), std::string::npos);
}

}  // namespace
}  // namespace quillo::host::emf
