#include <algorithm>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>

#include "capture/stage.h"
#include "support/capture_fixture.h"

namespace quillo::test {
namespace {

/// A call of a script and what is expected of it.
struct ExpectedCall {
  std::string name;
  int line;
  std::string result = {};                                // empty: any that begins with TRUE
  bool whole = false;                                     // `records` hold the bracket too
  std::vector<std::pair<int, std::string>> records = {};  // line in the script, text
};

/// Runs a script of tests/corpus/capture; the README there describes them.
class CaptureScript : public CaptureTest, public testing::WithParamInterface<const char*> {
 protected:
  void Run() {
    std::ifstream file(path_);
    ASSERT_TRUE(file) << path_;
    BeginCase();
    for (std::string line; std::getline(file, line);) {
      ++line_;
      try {
        if (!line.starts_with('#')) Read(line);
      } catch (const std::exception& error) {
        ADD_FAILURE_AT(path_.c_str(), line_) << error.what();
      }
    }
    MakeCall();
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

  void Read(const std::string& line) {
    const std::string word = line.substr(0, line.find(' '));
    const std::string rest = Expanded(line.substr(std::min(word.size() + 1, line.size())));
    if (word.starts_with('$')) {
      names_[word] = rest.substr(rest.find_first_not_of("= "));
    } else if (word == ">" || word == ">>") {
      call_.value().whole |= word == ">>";
      Expect(rest);
    } else if (word == "=") {
      call_.value().result = rest;
    } else {
      MakeCall();
      if (word.empty()) {
        BeginCase();
      } else if (word == "setup") {
        in_setup_ = true;
      } else if (Stage::IsCall(word)) {
        call_ = ExpectedCall{word, line_};
      } else {
        stage_->Set(word + ' ' + rest);
        if (in_setup_) setup_.push_back(word + ' ' + rest);
      }
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

  /// Records with bars between them. Blanks between the bytes of a bitmap are for the reader.
  void Expect(const std::string& text) {
    for (size_t at = 0; at < text.size();) {
      const size_t end = std::min(text.find(" | ", at), text.size());
      std::string record = text.substr(at, end - at);
      record.erase(std::remove(std::ranges::find(record, '['), record.end(), ' '), record.end());
      call_->records.emplace_back(line_, record);
      at = end + 3;
    }
  }

  void MakeCall() {
    if (!call_) return;
    const ExpectedCall call = *std::exchange(call_, std::nullopt);
    const testing::ScopedTrace trace(path_.c_str(), call.line, call.name);
    const std::string result = stage_->Call(call.name);
    if (call.result.empty() ? !result.starts_with("TRUE") : result != call.result) {
      ADD_FAILURE_AT(path_.c_str(), call.line) << "returned " << result;
    }
    const bool whole = call.whole || !call.name.starts_with("Drv");
    std::istringstream actual(whole ? TakeRecords() : TakeDrawing());
    std::string record;
    for (const auto& [line, expected] : call.records) {
      if (!std::getline(actual, record)) record = "nothing more";
      if (record == expected) continue;
      ADD_FAILURE_AT(path_.c_str(), line) << "expected " << expected << "\nrecorded " << record;
      return;
    }
    if (std::getline(actual, record)) {
      ADD_FAILURE_AT(path_.c_str(), call.line) << "recorded too: " << record;
    }
  }

  const std::string path_ =
      std::string(QUILLO_SOURCE_DIR "/tests/corpus/capture/") + GetParam() + ".txt";
  int line_ = 0;
  std::map<std::string, std::string> names_;
  std::vector<std::string> setup_;  // lines that every later case begins with
  bool in_setup_ = false;
  std::optional<Stage> stage_;
  std::optional<ExpectedCall> call_;
};

TEST_P(CaptureScript, CallsGiveTheirRecords) { Run(); }

INSTANTIATE_TEST_SUITE_P(Capture, CaptureScript,
                         testing::Values("blits", "brushes", "calls", "clips", "paths", "pens",
                                         "text"),
                         [](const auto& script) { return std::string(script.param); });

}  // namespace
}  // namespace quillo::test
