#include <gtest/gtest.h>
#include <string>

#include "capture/records/types.h"
#include "playback/page.h"
#include "support/watch.h"

namespace quillo::test {
namespace {

using namespace records;

constexpr RECT kRect = {1, 2, 300, 400};

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

struct TextCall {
  HDC dc;
  std::vector<LONG> place;  // reference point and rectangle
  UINT options;
  std::wstring text;
  bool operator==(const TextCall&) const = default;
};

/// Notes what text playback asks GDI for.
class TextWatch {
 public:
  std::vector<TextCall> calls;

 private:
  WATCH(ExtTextOutW)
  watch_{[this](HDC dc, int x, int y, UINT options, const RECT* r, const wchar_t* text, UINT count,
                const INT* spacing) {
    EXPECT_EQ(spacing, nullptr);
    calls.push_back(
        {dc, {x, y, r->left, r->top, r->right, r->bottom}, options, std::wstring(text, count)});
    return TRUE;
  }};
};

TextCall CallOf(const Page& page, const std::wstring& text) {
  return {page.context.page_dc, {10, 20, 1, 2, 300, 400}, ETO_OPAQUE, text};
}

TEST(PlayText, FontAndState_EqualTheGdiCalls) {
  LOGFONTW font = FontNamed(L"Liberation Serif", 2048);
  font.lfWidth = 700;
  font.lfItalic = 1;
  font.lfStrikeOut = 16;
  TextWatch watch;
  Page page;
  const HDC dc = page.context.page_dc;
  PlayFont(page, L"Liberation Mono");  // the next one replaces it
  const HGDIOBJ replaced = page.context.current_font;
  const HGDIOBJ previous = page.context.previous_font;
  {
    WATCH(DeleteObject) deleted([&](HGDIOBJ object) { return deleted.CallOriginal(object); });
    page.Play(REC_CREATEFONT, PayloadOf(font));
    EXPECT_EQ(deleted.calls.at(0), std::tuple(replaced));
  }
  EXPECT_EQ(page.context.previous_font, previous);
  EXPECT_EQ(GetCurrentObject(dc, OBJ_FONT), page.context.current_font);
  LOGFONTW created = {};
  GetObjectW(page.context.current_font, sizeof created, &created);
  font.lfHeight = -2048;
  font.lfWidth = 0;
  EXPECT_EQ(PayloadOf(created), PayloadOf(font));

  page.Play(REC_SETTEXTALIGN, Payload(1, std::byte{30}));  // missing bytes are zero
  page.Play(REC_SETTEXTCOLOR, PayloadOf(uint32_t{0x123456}));
  EXPECT_EQ(GetTextAlign(dc), 30u);
  EXPECT_EQ(GetTextColor(dc), 0x123456u);
  EXPECT_EQ(page.Play(REC_EXTTEXTOUT, TextPayload(L"Some text", ETO_OPAQUE)), 1);
  EXPECT_EQ(watch.calls, std::vector{CallOf(page, L"Some text")});
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
    TextWatch watch;
    Page page;
    PlayFont(page, c.face);
    // Records begin at any address.
    Payload bytes = TextPayload(c.glyphs, ETO_GLYPH_INDEX | ETO_OPAQUE);
    bytes.insert(bytes.begin(), std::byte{});
    EXPECT_EQ(DispatchRecord(page.context, REC_EXTTEXTOUT, Bytes(bytes).subspan(1)), 1);
    EXPECT_EQ(watch.calls, std::vector{CallOf(page, c.text)}) << &c - cases;
  }
  Page scarce(/*heap_limit=*/64 * 1024);
  EXPECT_EQ(scarce.Play(REC_EXTTEXTOUT, TextPayload(std::wstring(100'000, L'$'), ETO_GLYPH_INDEX)),
            1);
  EXPECT_TRUE(scarce.Records().empty());
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
  EXPECT_TRUE(page.Records().empty());
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
