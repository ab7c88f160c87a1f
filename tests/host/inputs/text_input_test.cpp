#include "host/inputs/text_input.h"

#include "tests/host/engine/fake_driver.h"

namespace quillo::host {
namespace {

class TextInputTest : public GraphicsTest {};

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

}  // namespace
}  // namespace quillo::host
