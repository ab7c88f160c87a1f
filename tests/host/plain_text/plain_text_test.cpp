#include <gtest/gtest.h>
#include <string>

#include "host/engine/clusters.h"
#include "host/plain_text/decode.h"
#include "host/plain_text/line_breaker.h"

namespace quillo::host {
namespace {

using namespace std::string_literals;

Bytes AsBytes(const std::string& text) {
  return {reinterpret_cast<const std::byte*>(text.data()), text.size()};
}

TEST(DecodeText, Encodings_AreTold) {
  const struct {
    std::string file;
    std::wstring text;
  } cases[] = {
      {"plain", L"plain"},
      {"\xC3\xA9", L"\x00E9"},
      {"\xEF\xBB\xBF\xC3\xA9", L"\x00E9"},
      {"\xEF\xBB\xBF\xE9", L"\xFFFD"},  // the mark decides
      {"\xE9t\xE9", L"\x00E9t\x00E9"},  // no UTF-8: the code page
      {"\xFF\xFE"
       "a\0\x3B\x26"s,
       L"a\x263B"},
      {"\xFE\xFF\0a\x26\x3B"s, L"a\x263B"},
      {"\xFF\xFE"
       "a"s,
       L""},
      {"\xEF\xBB\xBF", L""},
  };
  for (const auto& test : cases)
    EXPECT_EQ(DecodeText(AsBytes(test.file)), test.text) << &test - cases;
}

TEST(Compose, LettersAndMarks_BecomeOneCharacterWhereThereIsOne) {
  const std::pair<std::wstring, std::wstring> cases[] = {
      {L"Cafe\x0301 x", L"Caf\x00E9 x"},
      {L"q\x0301", L"q\x0301"},
      {L"\x212B", L"\x212B"},  // by itself it stays
      {L"u\x0308\x0301", L"\x01D8"},
      {L"\xD835\xDD38\x0301", L"\xD835\xDD38\x0301"},
  };
  for (const auto& [text, composed] : cases) EXPECT_EQ(Compose(text), composed);
}

TEST(FindNoText, ControlCharacters_AreFound) {
  for (const auto& text : {"a\tb\r\n\f"s, "\x1B[0m"s, "\xC3\xA9"s, "\xFF\xFE\0\1"s}) {
    EXPECT_EQ(FindNoText(AsBytes(text)), std::nullopt) << text;
  }
  for (const auto& text : {"%PD\0b"s, "%PD\1\2"s, "%PD\x7F"s, "abc\a"s}) {
    EXPECT_EQ(FindNoText(AsBytes(text)), 3u) << text;
  }
}

struct BreakCase {
  std::wstring text;
  int columns;
  std::wstring lines;  // each followed by |, or by # when the page ends there
};

TEST(LineBreaker, Texts_BecomeLines) {
  const BreakCase cases[] = {
      {L"a\nb\r\nc\rd", 9, L"a|b|c|d|"},
      {L"a\n\nb\n", 9, L"a||b|"},
      {L"a\fb\f\f", 9, L"a#b##"},
      {L"one two three", 8, L"one two |three|"},
      {L"one two", 7, L"one two|"},
      {L"one two  x", 7, L"one two  |x|"},  // blanks hang over the edge
      {L"abcdefgh", 3, L"abc|def|gh|"},
      {L"ab abcdefgh", 3, L"ab |abc|def|gh|"},
      {L"a\tb", 20, L"a       b|"},
      {L"12345678\tb", 20, L"12345678        b|"},
      {L"a\tb", 4, L"a   |b|"},
      {L"a\x07"
       L"b",
       9, L"ab|"},
      {L"\x6F22\x5B57x", 4, L"\x6F22\x5B57|x|"},  // two columns each
      {L"a\x0301"
       L"b\x0301"
       L"c",
       2,
       L"a\x0301"
       L"b\x0301|c|"},                          // marks take none
      {L"\x6F22\x5B57", 1, L"\x6F22|\x5B57|"},  // too narrow for any
  };
  for (const BreakCase& test : cases) {
    LineBreaker breaker(test.text);
    std::wstring lines;
    while (!breaker.AtEnd()) {
      const TextLine line = breaker.Next(test.columns);
      EXPECT_EQ(line.text.size(), line.columns.size());
      lines += line.text + (line.ends_page ? L"#" : L"|");
    }
    EXPECT_EQ(lines, test.lines) << &test - cases;
  }
}

}  // namespace
}  // namespace quillo::host
