#include "host/plain_text/line_breaker.h"

#include "base/windows.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include "host/engine/bidi.h"
#include "host/engine/clusters.h"

namespace quillo::host {

namespace {

constexpr int kTabColumns = 8;

/// First and last characters of the wide blocks (Unicode, East Asian Width W and F).
constexpr struct {
  wchar_t first, last;
} kWide[] = {{0x1100, 0x115F}, {0x2E80, 0x303E}, {0x3041, 0x33FF}, {0x3400, 0x4DBF},
             {0x4E00, 0x9FFF}, {0xA000, 0xA4CF}, {0xAC00, 0xD7A3}, {0xF900, 0xFAFF},
             {0xFE30, 0xFE6F}, {0xFF00, 0xFF60}, {0xFFE0, 0xFFE6}};

int ColumnsOf(wchar_t unit) {
  if (unit < 0x300) return 1;
  if (IS_LOW_SURROGATE(unit) || IsMark(unit) || ShowsNothing(unit)) return 0;
  const bool wide = std::ranges::any_of(
      kWide, [unit](const auto& block) { return unit >= block.first && unit <= block.last; });
  return wide ? 2 : 1;
}

}  // namespace

TextLine LineBreaker::Next(int columns) {
  TextLine line;
  if (!std::exchange(in_paragraph_, true)) {
    const std::wstring_view rest = std::wstring_view(text_).substr(at_);
    right_to_left_ = BeginsLeftwards(rest.substr(0, rest.find_first_of(L"\r\n\f")));
  }
  line.right_to_left = right_to_left_;
  int used = 0;
  size_t blank_end = 0;   // after the line's last blank: in the text,
  size_t line_break = 0;  // and in the line
  for (; at_ < text_.size(); ++at_) {
    const wchar_t unit = text_[at_];
    if (TakeLineEnd(line)) return line;
    if (unit < L' ' && unit != L'\t') continue;
    const int tab = kTabColumns - used % kTabColumns;
    const int wanted = unit == L'\t' ? std::min(tab, std::max(columns - used, 1)) : ColumnsOf(unit);
    if (used + wanted > columns && !line.text.empty() && unit != L' ') {
      if (line_break != 0) {
        at_ = blank_end;
        line.text.resize(line_break);
        line.columns.resize(line_break);
      }
      return line;
    }
    used += wanted;
    if (unit == L'\t') {
      line.text.append(static_cast<size_t>(wanted), L' ');
      line.columns.insert(line.columns.end(), static_cast<size_t>(wanted), 1);
    } else {
      line.text += unit;
      line.columns.push_back(wanted);
    }
    if (unit == L' ' || unit == L'\t') {
      blank_end = at_ + 1;
      line_break = line.text.size();
    }
  }
  return line;
}

/// Takes the end of a line; false when the text is not at one.
bool LineBreaker::TakeLineEnd(TextLine& line) {
  const wchar_t unit = text_[at_];
  if (unit != L'\n' && unit != L'\r' && unit != L'\f') return false;
  line.ends_page = unit == L'\f';
  in_paragraph_ = false;
  ++at_;
  if (unit == L'\r' && at_ < text_.size() && text_[at_] == L'\n') ++at_;
  return true;
}

}  // namespace quillo::host
