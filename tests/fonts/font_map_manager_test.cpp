#include "fonts/font_map_manager.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <string>

#include "fonts/cmap_builder.h"
#include "fonts/font_bytes.h"
#include "support/import_patch.h"

namespace quillo::test {
namespace {

/// A font that stands for its own DC: the calls that read the selected font are replaced.
struct FakeFont {
  std::wstring face = L"Some Face";
  TEXTMETRICW metrics = {};
  std::vector<std::byte> cmap = UnicodeCmap(Subtable4({{0x41, 0x5A, 0xFFC0, 0}}));  // A is glyph 1
  int loads = 0;                                                                    // of its cmap
  bool answers_face = true;

  HDC Dc() { return reinterpret_cast<HDC>(this); }
};

FakeFont& FontOf(HDC dc) { return *reinterpret_cast<FakeFont*>(dc); }

DWORD WINAPI FakeGetFontData(HDC dc, DWORD table, DWORD offset, void* buffer, DWORD size) {
  EXPECT_EQ(table, 0x70616D63u);
  FakeFont& font = FontOf(dc);
  font.loads += offset == 2;
  return MemoryCmap(font.cmap).Read(offset, {static_cast<std::byte*>(buffer), size});
}

WINBOOL WINAPI FakeGetTextMetrics(HDC dc, TEXTMETRICW* metrics) {
  *metrics = FontOf(dc).metrics;
  return TRUE;
}

int WINAPI FakeGetTextFace(HDC dc, int count, wchar_t* face) {
  EXPECT_EQ(count, 64);
  if (!FontOf(dc).answers_face) return 0;
  const auto& name = FontOf(dc).face;
  const size_t length = std::min(name.size(), static_cast<size_t>(count) - 1);
  name.copy(face, length);
  face[length] = L'\0';
  return static_cast<int>(length + 1);
}

/// Global blocks of the driver in this scope. The first `granted` allocations succeed.
class GlobalBlockWatch {
 public:
  explicit GlobalBlockWatch(int granted = 1 << 30) {
    granted_ = granted;
    live_ = 0;
    system_allocate_ = allocate_.Original<decltype(GlobalAlloc)>();
    system_free_ = free_.Original<decltype(GlobalFree)>();
  }
  static int Live() { return live_; }

 private:
  static HGLOBAL WINAPI Allocate(UINT flags, SIZE_T bytes) {
    EXPECT_EQ(flags, UINT{GMEM_MOVEABLE | GMEM_ZEROINIT});
    if (granted_-- <= 0) return nullptr;
    ++live_;
    return system_allocate_(flags, bytes);
  }
  static HGLOBAL WINAPI Free(HGLOBAL block) {
    --live_;
    return system_free_(block);
  }

  static inline int granted_ = 0;
  static inline int live_ = 0;
  static inline decltype(GlobalAlloc)* system_allocate_ = nullptr;
  static inline decltype(GlobalFree)* system_free_ = nullptr;
  ImportPatch allocate_{"GlobalAlloc", &Allocate};
  ImportPatch free_{"GlobalFree", &Free};
};

class FontMapManagerTest : public testing::Test {
 protected:
  /// Whether the font's cmap was read for this translation; it must turn glyph 2 into 'B'.
  bool BuildsFor(FakeFont& font) {
    const int loads_before = font.loads;
    const uint16_t glyph = 2;
    uint16_t character = 0;
    EXPECT_EQ(TranslateGlyphs(manager_.get(), font.Dc(), 1, &glyph, &character), 1);
    EXPECT_EQ(character, 'B');
    return font.loads != loads_before;
  }

  ImportPatch font_data_{"GetFontData", &FakeGetFontData};
  ImportPatch text_metrics_{"GetTextMetricsW", &FakeGetTextMetrics};
  ImportPatch text_face_{"GetTextFaceW", &FakeGetTextFace};
  std::unique_ptr<CFontMapManager> manager_ = CFontMapManager::Create();
};

TEST_F(FontMapManagerTest, SixtyFonts_OnlyTheFirstSlotIsReplaced) {
  const GlobalBlockWatch blocks;
  std::array<FakeFont, 60> fonts;
  for (size_t i = 0; i < fonts.size(); ++i) fonts[i].metrics.tmHeight = static_cast<LONG>(10 + i);
  for (FakeFont& font : fonts) EXPECT_TRUE(BuildsFor(font)) << font.metrics.tmHeight;
  EXPECT_EQ(GlobalBlockWatch::Live(), 2 * 50);  // a cmap and a table for each slot
  // Fonts 50 to 59 take the first slot from one another; 1 to 49 still have theirs.
  EXPECT_FALSE(BuildsFor(fonts[59]));
  for (size_t i = 1; i < fonts.size(); ++i) EXPECT_EQ(BuildsFor(fonts[i]), i >= 50) << i;
  EXPECT_TRUE(BuildsFor(fonts[0]));
  EXPECT_FALSE(BuildsFor(fonts[0]));
  manager_.reset();
  EXPECT_EQ(GlobalBlockWatch::Live(), 0);
}

TEST_F(FontMapManagerTest, Fonts_AreToldApartByFaceAndDecidingMetrics) {
  const struct {
    const char* name;
    void (*change)(FakeFont& font);
    bool is_new;
  } cases[] = {
      {"same", [](FakeFont&) {}, false},
      {"tmHeight", [](FakeFont& f) { f.metrics.tmHeight = 1; }, true},
      {"tmAscent", [](FakeFont& f) { f.metrics.tmAscent = 1; }, false},
      {"tmDescent", [](FakeFont& f) { f.metrics.tmDescent = 1; }, false},
      {"tmInternalLeading", [](FakeFont& f) { f.metrics.tmInternalLeading = 1; }, false},
      {"tmExternalLeading", [](FakeFont& f) { f.metrics.tmExternalLeading = 1; }, false},
      {"tmAveCharWidth", [](FakeFont& f) { f.metrics.tmAveCharWidth = 1; }, false},
      {"tmMaxCharWidth", [](FakeFont& f) { f.metrics.tmMaxCharWidth = 1; }, false},
      {"tmWeight", [](FakeFont& f) { f.metrics.tmWeight = 1; }, true},
      {"tmOverhang", [](FakeFont& f) { f.metrics.tmOverhang = 1; }, true},
      {"tmDigitizedAspectX", [](FakeFont& f) { f.metrics.tmDigitizedAspectX = 1; }, true},
      {"tmDigitizedAspectY", [](FakeFont& f) { f.metrics.tmDigitizedAspectY = 1; }, true},
      {"tmFirstChar", [](FakeFont& f) { f.metrics.tmFirstChar = 1; }, true},
      {"tmLastChar", [](FakeFont& f) { f.metrics.tmLastChar = 1; }, true},
      {"tmDefaultChar", [](FakeFont& f) { f.metrics.tmDefaultChar = 1; }, true},
      {"tmBreakChar", [](FakeFont& f) { f.metrics.tmBreakChar = 1; }, true},
      {"tmItalic", [](FakeFont& f) { f.metrics.tmItalic = 1; }, true},
      {"tmUnderlined", [](FakeFont& f) { f.metrics.tmUnderlined = 1; }, true},
      {"tmStruckOut", [](FakeFont& f) { f.metrics.tmStruckOut = 1; }, true},
      {"tmPitchAndFamily", [](FakeFont& f) { f.metrics.tmPitchAndFamily = 1; }, true},
      {"tmCharSet", [](FakeFont& f) { f.metrics.tmCharSet = 1; }, true},
      {"face", [](FakeFont& f) { f.face = L"Other Face"; }, true},
      {"letter case of the face", [](FakeFont& f) { f.face = L"some face"; }, true},
  };
  for (const auto& c : cases) {
    FakeFont first;
    manager_ = CFontMapManager::Create();
    BuildsFor(first);
    FakeFont second;
    c.change(second);
    EXPECT_EQ(BuildsFor(second), c.is_new) << c.name;
  }
}

TEST_F(FontMapManagerTest, UnreadableFont_IsTriedAgainEachTime) {
  const struct {
    const char* name;
    void (*spoil)(FakeFont& font);
  } cases[] = {
      {"no cmap", [](FakeFont& f) { f.cmap.clear(); }},
      {"nothing mapped",
       [](FakeFont& f) {
         f.cmap = UnicodeCmap(Subtable4({{5, 5, 0xFFFB, 0}}));
       }},
  };
  for (const auto& c : cases) {
    FakeFont font;
    c.spoil(font);
    for (int attempt = 1; attempt <= 2; ++attempt) {
      const int loads_before = font.loads;
      const uint16_t glyph = 2;
      uint16_t character = 0xABCD;
      EXPECT_EQ(manager_->Translate(font.Dc(), 1, &glyph, &character), 0) << c.name;
      EXPECT_EQ(character, 0xABCD) << c.name;
      EXPECT_GT(font.loads, loads_before) << c.name;
    }
  }
}

TEST_F(FontMapManagerTest, FontWithoutFace_TranslatesNothing) {
  FakeFont font;
  font.answers_face = false;
  const uint16_t glyph = 2;
  uint16_t character = 0xABCD;
  EXPECT_EQ(manager_->Translate(font.Dc(), 1, &glyph, &character), 0);
  EXPECT_EQ(character, 0xABCD);
}

TEST_F(FontMapManagerTest, NoMemoryForEitherBlock_TranslatesNothingAndLeaksNothing) {
  for (int granted = 0; granted < 2; ++granted) {
    const GlobalBlockWatch blocks(granted);
    FakeFont font;
    const uint16_t glyph = 2;
    uint16_t character = 0;
    EXPECT_EQ(manager_->Translate(font.Dc(), 1, &glyph, &character), 0);
    EXPECT_EQ(GlobalBlockWatch::Live(), 0);
  }
}

TEST_F(FontMapManagerTest, NullManager_TranslatesNothing) {
  FakeFont font;
  const uint16_t glyph = 2;
  uint16_t character = 0xABCD;
  EXPECT_EQ(TranslateGlyphs(nullptr, font.Dc(), 1, &glyph, &character), 0);
  EXPECT_EQ(character, 0xABCD);
}

TEST_F(FontMapManagerTest, FaceOf63Characters_IsKeptAsFarAsItFits) {
  FakeFont first;
  first.face = std::wstring(63, L'a');
  EXPECT_TRUE(BuildsFor(first));
  FakeFont second;
  second.face = std::wstring(31, L'a') + L"other tail";
  EXPECT_FALSE(BuildsFor(second));
}

TEST_F(FontMapManagerTest, Mappers_AreEqualWithAllMetrics) {
  FakeFont font;
  CFontMapper one;
  CFontMapper same;
  CFontMapper other;
  EXPECT_TRUE(one.Build(font.Dc()) && same.Build(font.Dc()));
  font.metrics.tmAscent = 1;
  EXPECT_TRUE(other.Build(font.Dc()));
  FontIdentity identity;
  EXPECT_TRUE(identity.Read(font.Dc()));
  EXPECT_TRUE(other.Matches(identity) && one.Matches(identity));
  EXPECT_TRUE(one == same);
  EXPECT_FALSE(one == other);
}

TEST_F(FontMapManagerTest, QueriesWithoutManager_ReadTheDcsFont) {
  const GlobalBlockWatch blocks;
  FakeFont font;
  EXPECT_EQ(CountMappedCharacters(font.Dc()), 26);
  EXPECT_EQ(GlyphOfCharacter(font.Dc(), 'C'), 3);
  const uint16_t glyphs[] = {1, 26, 27};
  uint16_t characters[3] = {};
  EXPECT_EQ(TranslateGlyphs(font.Dc(), 3, glyphs, characters), 3);
  EXPECT_EQ(std::u16string(characters, characters + 3), u"AZ\u0640");
  font.cmap.clear();
  EXPECT_EQ(CountMappedCharacters(font.Dc()), 0);
  EXPECT_EQ(GlyphOfCharacter(font.Dc(), 'C'), 0);
  EXPECT_EQ(TranslateGlyphs(font.Dc(), 3, glyphs, characters), 3);
  EXPECT_EQ(std::u16string(characters, characters + 3), u"\u0640\u0640\u0640");
  EXPECT_EQ(GlobalBlockWatch::Live(), 0);
}

TEST_F(FontMapManagerTest, LoadingAgain_ForgetsTheFontBefore) {
  const GlobalBlockWatch blocks;
  FakeFont font;
  CCmap4 cmap;
  CGlyphMap map;
  EXPECT_EQ(cmap.Load(font.Dc()), 1);
  EXPECT_EQ(map.Build(cmap), 27);
  font.cmap.clear();
  EXPECT_EQ(cmap.Load(font.Dc()), 0);
  EXPECT_EQ(map.Build(cmap), 0);
  EXPECT_EQ(cmap.GlyphOf('A'), 0);
  EXPECT_EQ(map.CharacterOf(1), 1600);
  EXPECT_EQ(GlobalBlockWatch::Live(), 0);
}

}  // namespace
}  // namespace quillo::test
