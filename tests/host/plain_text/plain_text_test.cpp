#include <gtest/gtest.h>

#include "host/base/text.h"
#include "host/engine/clusters.h"
#include "host/inputs/text_input.h"
#include "host/plain_text/decode.h"
#include "host/plain_text/line_breaker.h"
#include "support/case_table.h"
#include "tests/host/engine/fake_driver.h"

namespace quillo::host {
namespace {

std::string LinesOf(const std::string& text, int columns) {
  LineBreaker breaker(ToWide(text));
  std::wstring lines;
  while (!breaker.AtEnd()) {
    const TextLine line = breaker.Next(columns);
    EXPECT_EQ(line.text.size(), line.columns.size());
    lines += line.text + (line.ends_page ? L"#" : L"/");
  }
  return ToUtf8(lines);
}

TEST(PlainText, Bytes_BecomeTextAndLines) {
  test::CheckCases("host/plain_text.txt", [](const std::vector<std::string>& fields) {
    const std::string &what = fields[0], &text = fields[1];
    const Bytes bytes = std::as_bytes(std::span(text));
    if (what == "decode") return ToUtf8(DecodeText(bytes));
    if (what == "compose") return ToUtf8(Compose(ToWide(text)));
    if (what != "control") return LinesOf(text, std::stoi(what));
    const auto place = FindNoText(bytes);
    EXPECT_EQ(LooksLikeText(bytes), !place);
    return place ? std::to_string(*place) : "none";
  });
}

using TextInputTest = GraphicsTest;

// At 72 dpi a cell is 6 pixels wide, and the margins are a tenth of the page.
TEST_F(TextInputTest, RightToLeftParagraph_BeginsAtTheRightMargin) {
  constexpr std::u8string_view kText = u8"אב x1\nx1 אב";
  const auto* bytes = reinterpret_cast<const std::byte*>(kText.data());
  const auto input = OpenText({bytes, bytes + kText.size()});
  Graphics page = Page();
  input->DrawPage(page, {72, true, GlyphOrder::kDrop});
  std::string text;
  for (const std::string& call : driver_.calls) {
    if (!call.starts_with("TextOut ")) continue;
    text += call.substr(8, call.find(" accel") - 8) + "|" +
            call.substr(call.find(" at ") + 4,
                        call.find(',', call.find(" at ")) - call.find(" at ") - 4) +
            " ";
  }
  // The second line is one run or two: not every Courier New has the letters.
  const std::string first = "\\5d0\\5d1|76  |70 x1|58 ";
  EXPECT_TRUE(text == first + "x1 \\5d0\\5d1|10 " || text == first + "x1 |10 \\5d0\\5d1|28 ")
      << text;
}

TEST_F(TextInputTest, FormFeedAfterAFullPage_MakesNoEmptyPage) {
  const auto pages_of = [this](const std::string& text) {
    const auto bytes = std::as_bytes(std::span(text));
    const auto input = OpenText({bytes.begin(), bytes.end()});
    int pages = 0;
    for (; input->PreparePage(); ++pages) {
      Graphics page = Page();
      input->DrawPage(page, {72, true, GlyphOrder::kDrop});
    }
    return pages;
  };
  std::string full;  // one line less than two pages
  while (pages_of(full + "x\nx") < 2) full += "x\n";
  EXPECT_EQ(pages_of(full + "x\n\f"), 1);
  EXPECT_EQ(pages_of(full + "x\n\fx"), 2);
  EXPECT_EQ(pages_of(full + "x\n\f\fx"), 3);
  EXPECT_EQ(pages_of(full + "x\fx"), 2);
}

}  // namespace
}  // namespace quillo::host
