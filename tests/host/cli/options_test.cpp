#include <gtest/gtest.h>

#include "host/cli/command_line.h"

namespace quillo::host {
namespace {

const Sheet kLetter{.paper = DMPAPER_LETTER};
const Sheet kA4{.paper = DMPAPER_A4};
const Sheet kA4Landscape{.paper = DMPAPER_A4, .landscape = true};
const Sheet kA3Landscape{.paper = DMPAPER_A3, .landscape = true};

Options Parsed(const std::vector<std::string>& arguments) {
  const auto result = ParseCommandLine(arguments);
  const auto* answer = std::get_if<Answer>(&result);
  EXPECT_EQ(answer, nullptr) << answer->text;
  return answer == nullptr ? std::get<Options>(result) : Options{};
}

TEST(ParseCommandLine, Options_AreTaken) {
  const Options options =
      Parsed({"--dpi", "300", "--actual-size", "-o", "/tmp/a b", "a.emf", "--document=Grüße",
              "--preview", "0", "--quiet", "--client", "late", "--", "--b.emf"});
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

TEST(ParseCommandLine, SheetOptions_HoldForWhatFollows) {
  const struct {
    std::vector<std::string> arguments;
    std::vector<Sheet> sheets;
  } cases[] = {
      {{"a", "--paper", "A4", "b"}, {kLetter, kA4}},
      {{"--paper", "A4", "a", "--landscape", "b"}, {kA4, kA4Landscape}},
      {{"--paper", "A4", "a", "--paper", "A3", "--landscape", "b", "--paper", "Letter",
        "--portrait", "c"},
       {kA4, kA3Landscape, kLetter}},
      {{"a", "b", "--paper", "A4", "--landscape"}, {kA4Landscape, kA4Landscape}},
      {{"a", "--paper", "A3", "--landscape", "b", "--paper", "A4"}, {kA4, kA3Landscape}},
      {{"-o", "x", "--landscape", "--paper=a4", "a"}, {kA4Landscape}},
  };
  for (const auto& test : cases) {
    const Options options = Parsed(test.arguments);
    ASSERT_EQ(options.inputs.size(), test.sheets.size());
    for (size_t i = 0; i < test.sheets.size(); ++i) {
      EXPECT_EQ(options.inputs[i].sheet, test.sheets[i])
          << &test - cases << " " << options.inputs[i].name;
    }
  }
}

TEST(ParseCommandLine, CustomPapers_AreKnownByName) {
  const std::vector<NamedSheet> stored{{"Stored", {.paper = 300, .width = 10, .height = 20}}};
  const auto result = ParseCommandLine({"a", "--paper", "new", "b", "--paper", "stored", "c",
                                        "--custom-paper", "New,301,30x40", "--printer-data", "x=1"},
                                       stored);
  const Options& options = std::get<Options>(result);
  EXPECT_EQ(options.inputs[1].sheet, (Sheet{.paper = 301, .width = 300, .height = 400}));
  EXPECT_EQ(options.inputs[2].sheet, stored[0].sheet);
  EXPECT_EQ(options.custom_papers.size(), 1u);
  EXPECT_EQ(options.printer_values.size(), 1u);
  EXPECT_TRUE(Parsed({"--list-papers"}).inputs.empty());
}

TEST(ParseCommandLine, WrongLines_AreAnsweredWithWhatIsWrong) {
  const struct {
    std::vector<std::string> arguments;
    int exit_code;
    const char* said;
  } cases[] = {
      {{}, 2, "INPUT"},
      {{"--no-such-option", "a"}, 2, "--no-such-option"},
      {{"a", "--paper", "A99"}, 2, "A99"},
      {{"a", "--paper"}, 2, "--paper"},
      {{"--custom-paper", "x,1,2x3"}, 2, "NAME,NUMBER,WxH: the number must lie between 257 and"},
      {{"--printer-data", "x"}, 2, "NAME=VALUE"},
      {{"a", "--dpi", "49"}, 2, "49"},
      {{"a", "--dpi", "1601"}, 2, "1601"},
      {{"a", "--dpi", "x"}, 2, "x"},
      {{"a", "--preview", "-1"}, 2, "-1"},
      {{"a", "--fit", "--actual-size"}, 2, "--fit"},
      {{"a", "-o", "b", "-o", "c"}, 2, "--output"},
      {{"a", "--client", "nobody"}, 2, "nobody"},
      {{"--help"}, 0, "Exit codes"},
      {{"--version"}, 0, "quillo-print"},
  };
  for (const auto& test : cases) {
    const auto result = ParseCommandLine(test.arguments);
    const auto* answer = std::get_if<Answer>(&result);
    ASSERT_NE(answer, nullptr) << test.said;
    EXPECT_EQ(answer->exit_code, test.exit_code) << answer->text;
    EXPECT_NE(answer->text.find(test.said), std::string::npos) << answer->text;
  }
}

}  // namespace
}  // namespace quillo::host
