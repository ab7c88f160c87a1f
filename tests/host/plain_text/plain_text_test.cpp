#include <gtest/gtest.h>

#include "host/base/text.h"
#include "host/engine/clusters.h"
#include "host/plain_text/decode.h"
#include "host/plain_text/line_breaker.h"
#include "support/case_table.h"

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

}  // namespace
}  // namespace quillo::host
