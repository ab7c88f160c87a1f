#include "support/script.h"

#include <algorithm>
#include <map>
#include <optional>

#include "capture/stage.h"
#include "support/capture_fixture.h"

namespace quillo::test {
namespace {

/// Runs a script of tests/corpus/capture; the README there describes them.
class CaptureScript : public CaptureTest, public testing::WithParamInterface<const char*> {
 protected:
  void Run() {
    for (const ScriptLine& line : ReadScriptLines(std::string("capture/") + GetParam() + ".txt")) {
      SCOPED_TRACE(line.place);
      if (line.begins_case) BeginCase();
      try {
        CarryOut(line);
      } catch (const std::exception& error) {
        ADD_FAILURE() << error.what();
      }
    }
  }

 private:
  void BeginCase() {
    device_.remembered_colour = 0xFFFFFF;
    device_.resolution = {600, 300};
    device_.surface_size = {200, 100};
    stage_.emplace(device_, surface_);
    for (const std::string& line : setup_) stage_->Set(line);
    in_setup_ = false;
  }

  void CarryOut(const ScriptLine& line) {
    const std::string word = line.text.substr(0, line.text.find(' '));
    const std::string rest =
        Expanded(line.text.substr(std::min(word.size() + 1, line.text.size())));
    if (word.starts_with('$')) {
      names_[word] = rest.substr(rest.find_first_not_of("= "));
    } else if (word == "setup") {
      in_setup_ = true;
    } else if (Stage::IsCall(word)) {
      Call(word, rest, Records(Expanded(line.expected)));
    } else {
      stage_->Set(word + ' ' + rest);
      if (in_setup_) setup_.push_back(word + ' ' + rest);
    }
  }

  /// Puts in what each $name stands for.
  std::string Expanded(std::string text) const {
    for (size_t at = text.find('$'); at != text.npos; at = text.find('$', at)) {
      size_t end = at + 1;
      while (end < text.size() && (std::isalnum(text[end]) || text[end] == '_')) ++end;
      text.replace(at, end - at, names_.at(text.substr(at, end - at)));
    }
    return text;
  }

  /// A record a line, of records with bars between them. Blanks between the bytes of a bitmap are
  /// for the reader.
  static std::string Records(const std::string& text) {
    std::string records;
    for (size_t at = 0; at < text.size();) {
      const size_t end = std::min(text.find(" | ", at), text.size());
      std::string record = text.substr(at, end - at);
      record.erase(std::remove(std::ranges::find(record, '['), record.end(), ' '), record.end());
      records += record + '\n';
      at = end + 3;
    }
    return records;
  }

  /// `how`: "whole", for all records of the call, and "= " with the result.
  void Call(const std::string& name, const std::string& how, const std::string& expected) {
    const std::string result = stage_->Call(name);
    const size_t equals = how.find("= ");
    EXPECT_TRUE(equals == how.npos ? result.starts_with("TRUE") : result == how.substr(equals + 2))
        << "returned " << result;
    const bool whole = how.starts_with("whole") || !name.starts_with("Drv");
    EXPECT_EQ(whole ? TakeRecords() : TakeDrawing(), expected);
  }

  std::map<std::string, std::string> names_;
  std::vector<std::string> setup_;  // lines that every later case begins with
  bool in_setup_ = false;
  std::optional<Stage> stage_;
};

TEST_P(CaptureScript, CallsGiveTheirRecords) { Run(); }

INSTANTIATE_TEST_SUITE_P(Capture, CaptureScript,
                         testing::Values("blits", "brushes", "calls", "clips", "paths", "pens",
                                         "text"),
                         [](const auto& script) { return std::string(script.param); });

}  // namespace
}  // namespace quillo::test
