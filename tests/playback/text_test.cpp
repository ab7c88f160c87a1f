#include <cwchar>
#include <gtest/gtest.h>
#include <string>

#include "capture/records/types.h"
#include "playback/page.h"

namespace quillo::test {
namespace {

using namespace records;

constexpr RECT kRect = {1, 2, 300, 400};

LOGFONTW FontNamed(const wchar_t* face, LONG height) {
  LOGFONTW font = {};
  font.lfHeight = height;
  std::wcscpy(font.lfFaceName, face);
  return font;
}

void PlayFont(Page& page, const wchar_t* face, LONG height = 100) {
  EXPECT_EQ(page.Play(REC_CREATEFONT, PayloadOf(FontNamed(face, height))), 1);
}

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
    if (record[0] == EMR_EXTCREATEFONTINDIRECTW) record.resize(3 + sizeof(LOGFONTW) / 4);
  }
  return records;
}

EmfRecords RecordsOf(Page& page) { return Comparable(page.Records()); }

/// What a page records that draws `text` in `font`, and `more` before it.
EmfRecords Drawn(
    const LOGFONTW& font, const std::wstring& text, UINT options,
    const std::function<void(HDC)>& more = [](HDC) {}) {
  return Comparable(RecordDirect([&](HDC dc) {
    const Font created(CreateFontIndirectW(&font));
    const SelectScope selected(dc, created.Get());
    more(dc);
    ExtTextOutW(dc, 10, 20, options, &kRect, text.data(), static_cast<UINT>(text.size()), nullptr);
  }));
}

TEST(PlayText, FontAndState_EqualTheGdiCalls) {
  LOGFONTW font = FontNamed(L"Liberation Serif", 2048);
  font.lfWidth = 700;
  font.lfItalic = 1;
  font.lfStrikeOut = 16;
  Page page;
  PlayFont(page, L"Liberation Mono");  // gives way to the next one
  page.Play(REC_CREATEFONT, PayloadOf(font));
  page.Play(REC_SETTEXTALIGN, Payload(1, std::byte{30}));  // missing bytes are zero
  page.Play(REC_SETTEXTCOLOR, PayloadOf(uint32_t{0x123456}));
  EXPECT_EQ(page.Play(REC_EXTTEXTOUT, TextPayload(L"Some text", ETO_OPAQUE)), 1);

  EmfRecords expected = RecordDirect([](HDC dc) {
    const LOGFONTW first = FontNamed(L"Liberation Mono", -100);
    const Font created(CreateFontIndirectW(&first));
    const SelectScope selected(dc, created.Get());
  });
  font.lfHeight = -2048;
  font.lfWidth = 0;
  const EmfRecords rest = Drawn(font, L"Some text", ETO_OPAQUE, [](HDC dc) {
    SetTextAlign(dc, 30);
    SetTextColor(dc, 0x123456);
  });
  expected.insert(expected.end(), rest.begin(), rest.end());
  EXPECT_EQ(RecordsOf(page), Comparable(expected));
}

TEST(PlayText, GlyphIndexes_GoOutAsCharacters) {
  const struct {
    const wchar_t* face;
    std::wstring glyphs, text;
  } cases[] = {
      {L"Liberation Sans", L",PSRUWV", L"Imports"},  // the usual order: glyph = character - 29
      {L"Liberation Sans", L"$\xFFF0", L"A\u0640"},  // no character maps to the second
      {L"Liberation Sans", L"", L""},
      // Its last encoding record is no format 4: unreadable, never wrong.
      {L"DejaVu Sans", L",PSRUWV", std::wstring(7, L'\0')},
  };
  for (const auto& c : cases) {
    Page page;
    PlayFont(page, c.face);
    // Records stand at any address.
    Payload bytes = TextPayload(c.glyphs, ETO_GLYPH_INDEX | ETO_OPAQUE);
    bytes.insert(bytes.begin(), std::byte{});
    EXPECT_EQ(DispatchRecord(page.context, REC_EXTTEXTOUT, Bytes(bytes).subspan(1)), 1);
    EXPECT_EQ(RecordsOf(page), Drawn(FontNamed(c.face, -100), c.text, ETO_OPAQUE)) << &c - cases;
  }
  Page scarce(/*heap_limit=*/64 * 1024);
  EXPECT_EQ(scarce.Play(REC_EXTTEXTOUT, TextPayload(std::wstring(100'000, L'$'), ETO_GLYPH_INDEX)),
            1);
  EXPECT_TRUE(RecordsOf(scarce).empty());
}

TEST(PlayText, CountBeyondThePayload_IsIgnored) {
  const Payload whole = TextPayload(L"abc");
  Page page;
  for (size_t size = 0; size < whole.size() - 2; ++size) {  // the last unit is not read
    EXPECT_EQ(page.Play(REC_EXTTEXTOUT, Payload(whole.data(), whole.data() + size)), 0);
  }
  for (const uint32_t count : {5u, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(page.Play(REC_EXTTEXTOUT, TextPayload(L"abc", ETO_GLYPH_INDEX, count)), 0) << count;
  }
  EXPECT_TRUE(RecordsOf(page).empty());
}

TEST(PlayText, NonAscii_IsSeenInCharactersAndStays) {
  const struct {
    std::wstring text;
    UINT options;
    uint32_t seen;
  } steps[] = {{L"", 0, 0},
               {{0x7F, 0, L'a'}, 0, 0},
               {L"$%", ETO_GLYPH_INDEX, 0},
               {L"\x80tail", 0, 1},
               {L"plain", 0, 1}};
  Page page;
  PlayFont(page, L"Liberation Sans");
  for (const auto& step : steps) {
    page.Play(REC_EXTTEXTOUT, TextPayload(step.text, step.options));
    EXPECT_EQ(page.context.non_ascii_text_seen, step.seen);
  }
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
    for (const LONG height : c.heights) PlayFont(page, L"Liberation Sans", height);
    std::vector<LONG> keys;
    page.context.seen_fonts.ForEach([&](const SeenFont& f) { keys.push_back(f.key.lfHeight); });
    EXPECT_EQ(keys, c.keys) << c.name;
  }
  // All bytes count, also those behind the name.
  Page page;
  LOGFONTW font = FontNamed(L"Liberation Sans", 100);
  page.Play(REC_CREATEFONT, PayloadOf(font));
  font.lfFaceName[31] = L'x';
  page.Play(REC_CREATEFONT, PayloadOf(font));
  EXPECT_EQ(page.context.seen_fonts.Count(), 2u);
}

}  // namespace
}  // namespace quillo::test
