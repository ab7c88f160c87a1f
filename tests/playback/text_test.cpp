#include <cwchar>
#include <gtest/gtest.h>
#include <string>

#include "capture/records/types.h"
#include "playback/page.h"

namespace quillo::test {
namespace {

using namespace records;

LOGFONTW FontNamed(const wchar_t* face, LONG height = 100) {
  LOGFONTW font = {};
  font.lfHeight = height;
  font.lfWeight = FW_NORMAL;
  std::wcscpy(font.lfFaceName, face);
  return font;
}

constexpr RECT kRect = {1, 2, 300, 400};

Payload TextPayload(const std::wstring& text, UINT options, uint32_t count) {
  Payload units;
  for (const wchar_t c : text) AppendPart(units, c);
  return PayloadOf(10, 20, options, kRect, count, uint32_t{0}, units, uint16_t{0});
}

Payload TextPayload(const std::wstring& text, UINT options = 0) {
  return TextPayload(text, options, static_cast<uint32_t>(text.size()));
}

/// Records without what Wine leaves unwritten: the names behind the LOGFONTW of a created font.
EmfRecords Comparable(EmfRecords records) {
  for (auto& record : records) {
    if (record[0] == EMR_EXTCREATEFONTINDIRECTW)
      record.resize(3 + sizeof(LOGFONTW) / sizeof(DWORD));
  }
  return records;
}

EmfRecords RecordsOf(Page& page) { return Comparable(page.Records()); }

/// What a page records that draws `text` in `font`, and nothing more.
EmfRecords DrawnText(const LOGFONTW& font, const std::wstring& text, UINT options = 0) {
  return Comparable(RecordDirect([&](HDC dc) {
    const Font created(CreateFontIndirectW(&font));
    const SelectScope selected(dc, created.Get());
    ExtTextOutW(dc, 10, 20, options, &kRect, text.data(), static_cast<UINT>(text.size()), nullptr);
  }));
}

TEST(PlayText, FontsAndState_EqualTheGdiCalls) {
  LOGFONTW captured = FontNamed(L"Liberation Serif", 2048);
  captured.lfWidth = 700;
  captured.lfItalic = 1;
  captured.lfStrikeOut = 16;
  Page page;
  EXPECT_EQ(page.Play(REC_CREATEFONT, PayloadOf(captured)), 1);
  EXPECT_EQ(page.Play(REC_CREATEFONT, PayloadOf(FontNamed(L"Liberation Mono"))), 1);
  EXPECT_EQ(page.Play(REC_SETTEXTALIGN, PayloadOf(uint32_t{24})), 1);
  EXPECT_EQ(page.Play(REC_SETTEXTALIGN, Payload(1, std::byte{30})), 1);  // missing bytes are zero
  EXPECT_EQ(page.Play(REC_SETTEXTCOLOR, PayloadOf(uint32_t{0x123456})), 1);
  EXPECT_EQ(page.Play(REC_EXTTEXTOUT, TextPayload(L"Some text", ETO_OPAQUE)), 1);
  EXPECT_EQ(page.Play(REC_EXTTEXTOUT, TextPayload(L"")), 1);
  EXPECT_EQ(page.Play(REC_TEXTRUN, Payload(38)), 1);

  const EmfRecords expected = Comparable(RecordDirect([&](HDC dc) {
    LOGFONTW font = captured;
    font.lfHeight = -2048;
    font.lfWidth = 0;
    {
      const Font created(CreateFontIndirectW(&font));
      const SelectScope selected(dc, created.Get());
    }
    font = FontNamed(L"Liberation Mono", -100);
    const Font created(CreateFontIndirectW(&font));
    const SelectScope selected(dc, created.Get());
    SetTextAlign(dc, 24);
    SetTextAlign(dc, 30);
    SetTextColor(dc, 0x123456);
    ExtTextOutW(dc, 10, 20, ETO_OPAQUE, &kRect, L"Some text", 9, nullptr);
    ExtTextOutW(dc, 10, 20, 0, &kRect, L"", 0, nullptr);
  }));
  EXPECT_EQ(RecordsOf(page), expected);
}

TEST(PlayText, GlyphIndexes_GoOutAsCharacters) {
  const struct {
    const char* name;
    const wchar_t* face;
    std::wstring glyphs;
    std::wstring text;
  } cases[] = {
      // The usual order: glyph = character - 29.
      {"letters", L"Liberation Sans", L",PSRUWV", L"Imports"},
      {"glyph without a character", L"Liberation Sans", L"$\xFFF0", L"A\u0640"},
      // Its last encoding record is no format 4: unreadable, never wrong.
      {"font without a map", L"DejaVu Sans", L",PSRUWV", std::wstring(7, L'\0')},
      {"no glyphs", L"Liberation Sans", L"", L""},
  };
  for (const auto& c : cases) {
    Page page;
    page.Play(REC_CREATEFONT, PayloadOf(FontNamed(c.face)));
    // Records stand at any address.
    Payload bytes = TextPayload(c.glyphs, ETO_GLYPH_INDEX | ETO_OPAQUE);
    bytes.insert(bytes.begin(), std::byte{});
    const MutableBytes payload = MutableBytes(bytes).subspan(1);
    EXPECT_EQ(DispatchRecord(page.context, REC_EXTTEXTOUT, payload), 1);
    EXPECT_EQ(LoadOrZero<UINT>(payload, 8), UINT{ETO_OPAQUE}) << c.name;
    EXPECT_EQ(RecordsOf(page), DrawnText(FontNamed(c.face, -100), c.text, ETO_OPAQUE)) << c.name;
  }
}

TEST(PlayText, WithoutTranslator_GlyphsAreCleared) {
  Page page;
  page.context.glyph_translator.reset();
  page.Play(REC_CREATEFONT, PayloadOf(FontNamed(L"Liberation Sans")));
  EXPECT_EQ(page.Play(REC_EXTTEXTOUT, TextPayload(L"$%", ETO_GLYPH_INDEX)), 1);
  EXPECT_EQ(RecordsOf(page),
            DrawnText(FontNamed(L"Liberation Sans", -100), std::wstring(2, L'\0')));
}

TEST(PlayText, GlyphsThatFindNoMemory_AreNotDrawn) {
  Page page(/*heap_limit=*/64 * 1024);
  const std::wstring glyphs(100'000, L'$');
  EXPECT_EQ(page.Play(REC_EXTTEXTOUT, TextPayload(glyphs, ETO_GLYPH_INDEX)), 1);
  EXPECT_TRUE(RecordsOf(page).empty());
}

TEST(PlayText, CountBeyondThePayload_IsIgnored) {
  const Payload whole = TextPayload(L"abc");
  Page page;
  for (size_t size = 0; size < whole.size() - 2; ++size) {  // the last unit is not read
    const Payload cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
    EXPECT_EQ(page.Play(REC_EXTTEXTOUT, cut), 0) << size;
  }
  for (const uint32_t count : {5u, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(page.Play(REC_EXTTEXTOUT, TextPayload(L"abc", ETO_GLYPH_INDEX, count)), 0) << count;
  }
  EXPECT_TRUE(RecordsOf(page).empty());
}

TEST(PlayText, NonAscii_IsSeenInCharactersAndStays) {
  Page page;
  page.Play(REC_CREATEFONT, PayloadOf(FontNamed(L"Liberation Sans")));
  const struct {
    std::wstring text;
    UINT options;
    uint32_t seen;
  } steps[] = {
      {L"", 0, 0},         {{0x7F, 0, L'a'}, 0, 0}, {L"$%", ETO_GLYPH_INDEX, 0},
      {L"\x80tail", 0, 1}, {L"plain", 0, 1},
  };
  for (const auto& step : steps) {
    page.Play(REC_EXTTEXTOUT, TextPayload(step.text, step.options));
    EXPECT_EQ(page.context.non_ascii_text_seen, step.seen);
  }
  Page other;
  other.Play(REC_CREATEFONT, PayloadOf(FontNamed(L"Liberation Sans")));
  other.Play(REC_EXTTEXTOUT, TextPayload(L"\xFFF0", ETO_GLYPH_INDEX));  // translated to U+0640
  EXPECT_EQ(other.context.non_ascii_text_seen, 1u);
}

TEST(PlayText, SeenFonts_AreKeyedByTheTransformedHeight) {
  const struct {
    const char* name;
    XFORM transform;  // all zero: none was set
    LONG heights[2];
    std::vector<LONG> keys;
  } cases[] = {
      {"no transform yet", {}, {100, 200}, {0}},
      {"same height", {1, 0, 0, 1, 0, 0}, {100, 100}, {-100}},
      {"scale", {0.5f, 0, 0, 2, 0, 0}, {100, 300}, {-50, -150}},
      {"truncated towards zero", {0.25f, 0, 0, 1, 0, 0}, {6, 7}, {-1}},
      {"offset counts", {1, 0, 0, 1, 250.5f, 9}, {100, 200}, {150, 50}},
      {"beyond the range", {1e30f, 0, 0, 1, 0, 0}, {1, 2}, {INT32_MIN}},
  };
  for (const auto& c : cases) {
    Page page;
    page.context.world_transform = c.transform;
    for (const LONG height : c.heights) {
      page.Play(REC_CREATEFONT, PayloadOf(FontNamed(L"Liberation Sans", height)));
    }
    std::vector<LONG> keys;
    page.context.seen_fonts.ForEach([&](const SeenFont& font) {
      EXPECT_EQ(font.flag, 0u);
      EXPECT_STREQ(font.key.lfFaceName, L"Liberation Sans");
      keys.push_back(font.key.lfHeight);
    });
    EXPECT_EQ(keys, c.keys) << c.name;
  }
}

TEST(PlayText, SeenFonts_CompareBytesBehindTheNameToo) {
  Page page;
  LOGFONTW font = FontNamed(L"Liberation Sans");
  page.Play(REC_CREATEFONT, PayloadOf(font));
  font.lfFaceName[31] = L'x';
  page.Play(REC_CREATEFONT, PayloadOf(font));
  EXPECT_EQ(page.context.seen_fonts.Count(), 2u);
}

TEST(PlayText, TextRuns_KeepTheirGlyphCounts) {
  Page page;
  for (const uint32_t count : {43u, 0u, 7u}) {
    Payload payload(38);
    Store(payload, 28, count);
    page.Play(REC_TEXTRUN, payload);
  }
  EXPECT_EQ(page.Play(REC_TEXTRUN, Payload(37)), 0);
  std::vector<uint32_t> counts;
  page.context.run_list.ForEach([&](uint32_t count) { counts.push_back(count); });
  EXPECT_EQ(counts, (std::vector<uint32_t>{43, 0, 7}));
}

}  // namespace
}  // namespace quillo::test
