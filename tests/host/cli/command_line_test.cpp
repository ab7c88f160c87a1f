#include "host/cli/command_line.h"

#include <gtest/gtest.h>
#include <sstream>

#include "support/case_table.h"

namespace quillo::host {
namespace {

TEST(ParseCommandLine, Options_AreTaken) {
  const auto result = ParseCommandLine({"--dpi", "300", "--actual-size", "-o", "/tmp/a b", "a.emf",
                                        "--document=Grüße", "--preview", "0", "--quiet", "--client",
                                        "late", "--", "--b.emf"});
  const Options& options = std::get<Options>(result);
  EXPECT_EQ(options.dpi, 300);
  EXPECT_FALSE(options.fit);
  EXPECT_EQ(options.output, L"Z:/tmp/a b");
  EXPECT_EQ(options.document, L"Grüße");
  EXPECT_EQ(options.preview_dpi, 0);
  EXPECT_TRUE(options.quiet);
  EXPECT_EQ(options.client, ClientFault::kLate);
  ASSERT_EQ(options.inputs.size(), 2u);
  EXPECT_EQ(options.inputs[1].name, "--b.emf");
}

std::string Describe(const Options& options) {
  std::string text;
  for (const Options::Input& input : options.inputs) {
    text += (text.empty() ? "" : "; ") + input.name + ": " + DescribeSheet(input.sheet);
    const int paper = input.sheet.paper;
    if (paper > DMPAPER_USER) text += " (" + std::to_string(paper) + ")";
  }
  const size_t stored = options.custom_papers.size() + options.printer_values.size();
  return text + (stored == 0 ? "" : "; stores " + std::to_string(stored));
}

TEST(ParseCommandLine, Lines_GiveSheetsOrAnswers) {
  test::CheckCases("host/command_lines.txt", [](const std::vector<std::string>& fields) {
    std::istringstream line(fields[0]);
    const std::vector<std::string> arguments{std::istream_iterator<std::string>(line), {}};
    const auto result =
        ParseCommandLine(arguments, {{"Stored", {.paper = 300, .width = 10, .height = 20}}});
    if (const auto* options = std::get_if<Options>(&result)) return Describe(*options);
    const Answer& answer = std::get<Answer>(result);
    const std::string exits = "exit " + std::to_string(answer.exit_code) + ": ";
    const bool said = fields[1].starts_with(exits) &&
                      answer.text.find(fields[1].substr(exits.size())) != std::string::npos;
    return said ? fields[1] : exits + answer.text;
  });
}

}  // namespace
}  // namespace quillo::host
