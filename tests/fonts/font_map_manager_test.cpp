#include "fonts/font_map_manager.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <string>

#include "fonts/font_tables.h"
#include "support/watch.h"

namespace quillo::test {
namespace {

/// A font that stands for its own DC: the calls that read the selected font are replaced.
struct FakeFont {
  std::wstring face = L"Some Face";
  TEXTMETRICW metrics = {};
  int loads = 0;                                                             // of its cmap
  std::vector<std::byte> cmap = Cmap(Subtable4({{0x41, 0x5A, 0xFFC0, 0}}));  // A is glyph 1
  uint32_t fails_from = UINT32_MAX;                                          // in bytes of it
  HDC Dc() { return reinterpret_cast<HDC>(this); }
};

FakeFont& FontOf(HDC dc) { return *reinterpret_cast<FakeFont*>(dc); }

class FontMapManagerTest : public testing::Test {
 protected:
  ~FontMapManagerTest() override {
    manager_.reset();
    EXPECT_EQ(live_, 0) << "global blocks are left";
  }

  /// The character of glyph 2, which is 'B' in a readable font; 0 when none was written.
  uint16_t Translated(FakeFont& font) {
    const uint16_t glyph = 2;
    uint16_t character = 0;
    const int32_t count = TranslateGlyphs(manager_.get(), font.Dc(), 1, &glyph, &character);
    EXPECT_EQ(count != 0, character != 0);
    return character;
  }

  /// Whether the font's cmap was read for a translation.
  bool BuildsFor(FakeFont& font) {
    const int loads_before = font.loads;
    EXPECT_EQ(Translated(font), 'B');
    return font.loads != loads_before;
  }

  int granted_ = 1 << 30;  // allocations that succeed
  int live_ = 0;
  WATCH(GlobalAlloc)
  allocate_{[this](UINT flags, SIZE_T bytes) -> HGLOBAL {
    EXPECT_EQ(flags, UINT{GMEM_MOVEABLE | GMEM_ZEROINIT});
    if (granted_-- <= 0) return nullptr;
    ++live_;
    return allocate_.CallOriginal(flags, bytes);
  }};
  WATCH(GlobalFree)
  free_{[this](HGLOBAL block) {
    --live_;
    return free_.CallOriginal(block);
  }};
  WATCH(GetFontData)
  font_data_{[](HDC dc, DWORD table, DWORD offset, void* buffer, DWORD size) {
    EXPECT_EQ(table, 0x70616D63u);
    FontOf(dc).loads += offset == 2;
    return MemoryCmap(FontOf(dc).cmap, FontOf(dc).fails_from)
        .Read(offset, {static_cast<std::byte*>(buffer), size});
  }};
  WATCH(GetTextMetricsW)
  metrics_{[](HDC dc, TEXTMETRICW* metrics) {
    *metrics = FontOf(dc).metrics;
    return TRUE;
  }};
  WATCH(GetTextFaceW)
  face_{[](HDC dc, int count, wchar_t* face) {
    EXPECT_EQ(count, 64);
    const std::wstring& name = FontOf(dc).face;
    face[name.copy(face, 63)] = L'\0';
    return static_cast<int>(std::min<size_t>(name.size(), 63));  // 0: no face
  }};
  std::unique_ptr<CFontMapManager> manager_ = CFontMapManager::Create();
};

TEST_F(FontMapManagerTest, SixtyFonts_OnlyTheFirstSlotIsReplaced) {
  FakeFont fonts[60];
  for (FakeFont& font : fonts) {
    font.metrics.tmHeight = static_cast<LONG>(&font - fonts);
    EXPECT_TRUE(BuildsFor(font));
  }
  EXPECT_EQ(live_, 2 * 50);  // a cmap and a table for each slot
  // Fonts 50 to 59 take the first slot from one another; 1 to 49 still have theirs.
  EXPECT_FALSE(BuildsFor(fonts[59]));
  for (size_t i = 1; i < 60; ++i) EXPECT_EQ(BuildsFor(fonts[i]), i >= 50) << i;
  EXPECT_TRUE(BuildsFor(fonts[0]));
}

TEST_F(FontMapManagerTest, Fonts_AreToldApartByFaceAndDecidingMetrics) {
  FakeFont first;
  EXPECT_TRUE(BuildsFor(first));
  CFontMapper mapper;
  EXPECT_TRUE(mapper.Build(first.Dc()));
  // Ascent, descent, leadings and widths do not decide.
  for (size_t offset = 0; offset <= offsetof(TEXTMETRICW, tmCharSet); ++offset) {
    FakeFont font;
    reinterpret_cast<BYTE*>(&font.metrics)[offset] = 1;
    CFontMapper other;
    EXPECT_TRUE(other.Build(font.Dc()));
    EXPECT_FALSE(other == mapper) << offset;
    EXPECT_EQ(BuildsFor(font),
              offset < offsetof(TEXTMETRICW, tmAscent) || offset >= offsetof(TEXTMETRICW, tmWeight))
        << offset;
  }
  FakeFont other_face{.face = L"Some Other Face"}, other_case{.face = L"some face"};
  EXPECT_TRUE(BuildsFor(other_face));
  EXPECT_TRUE(BuildsFor(other_case));
  // A face is kept as far as it fits.
  FakeFont endless{.face = std::wstring(63, L'a')},
      other_tail{.face = std::wstring(31, L'a') + L"b"};
  EXPECT_TRUE(BuildsFor(endless));
  EXPECT_FALSE(BuildsFor(other_tail));
}

TEST_F(FontMapManagerTest, UnreadableFont_IsTriedAgainEachTime) {
  FakeFont no_cmap{.cmap = {}}, nothing_mapped{.cmap = Cmap(Subtable4({{5, 5, 0xFFFB, 0}}))};
  for (FakeFont* font : {&no_cmap, &nothing_mapped}) {
    EXPECT_EQ(Translated(*font), 0);
    const int loads_before = font->loads;
    EXPECT_EQ(Translated(*font), 0);
    EXPECT_GT(font->loads, loads_before);
  }
  FakeFont no_face{.face = L""}, readable;
  EXPECT_EQ(Translated(no_face), 0);
  for (const int granted : {0, 1}) {
    granted_ = granted;
    EXPECT_EQ(Translated(readable), 0);
    EXPECT_EQ(live_, 0);
  }
  manager_.reset();
  EXPECT_EQ(Translated(readable), 0);
}

TEST_F(FontMapManagerTest, QueriesOfADc_KeepNothing) {
  FakeFont font;
  const uint16_t glyphs[] = {1, 26, 27};
  uint16_t characters[3] = {};
  EXPECT_EQ(CountMappedCharacters(font.Dc()), 26);
  EXPECT_EQ(GlyphOfCharacter(font.Dc(), 'C'), 3);
  EXPECT_EQ(CharactersOfGlyphs(font.Dc(), 3, glyphs, characters), 3);
  EXPECT_EQ(std::u16string(characters, characters + 3), u"AZ\u0640");

  CCmap4 cmap;
  CGlyphMap map;
  EXPECT_EQ(cmap.Load(font.Dc()), 1);
  EXPECT_EQ(map.Build(cmap), 27);
  font.cmap.clear();
  EXPECT_EQ(CountMappedCharacters(font.Dc()), 0);
  EXPECT_EQ(CharactersOfGlyphs(font.Dc(), 3, glyphs, characters), 3);
  EXPECT_EQ(std::u16string(characters, characters + 3), u"\u0640\u0640\u0640");
  // What was loaded before is forgotten, also when the segments cannot be read.
  EXPECT_EQ(cmap.Load(font.Dc()), 0);
  font.cmap = FakeFont().cmap;
  font.fails_from = 4 + 8 + 14;
  EXPECT_EQ(cmap.Load(font.Dc()), 0);
  EXPECT_EQ(map.Build(cmap), 0);
  EXPECT_EQ(cmap.GlyphOf('A'), 0);
  EXPECT_EQ(map.CharacterOf(1), 1600);
}

}  // namespace
}  // namespace quillo::test
