#include "host/cli/command_line.h"

#include <gtest/gtest.h>
#include <sstream>

#include "host/base/text.h"
#include "support/case_table.h"

namespace quillo::host {
namespace {

std::string Describe(const Options& options) {
  std::string text;
  for (const Options::Input& input : options.inputs) {
    text += (text.empty() ? "" : "; ") + input.name + ": " + DescribeSheet(input.sheet);
    const int paper = input.sheet.paper;
    if (paper > DMPAPER_USER) text += " (" + std::to_string(paper) + ")";
  }
  if (const auto& app = options.app) {
    text += ToUtf8(app->program);
    for (const std::wstring& argument : app->arguments) text += "," + ToUtf8(argument);
    if (app->sheet) text += ": " + DescribeSheet(*app->sheet);
    if (app->confirm) text += "; confirm";
    if (app->timeout) text += "; " + std::to_string(*app->timeout) + " s";
  }
  const Options usual;
  if (options.dpi != usual.dpi) text += "; " + std::to_string(options.dpi) + " dpi";
  if (!options.fit) text += "; actual size";
  if (options.output != L"out") text += "; into " + ToUtf8(options.output.wstring());
  const std::string document = ToUtf8(options.document);
  if (!options.inputs.empty() && document != options.inputs[0].name) text += "; as " + document;
  if (options.preview_dpi != usual.preview_dpi) {
    text += "; preview " + std::to_string(options.preview_dpi);
  }
  if (options.quiet) text += "; quiet";
  if (options.client != usual.client) text += "; client " + std::string(NameOf(options.client));
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
