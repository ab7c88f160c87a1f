#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quillo::host {

/// A line as it is printed: UTF-16 units and the columns that each takes (2 for the wide characters
/// of East Asia, 0 for marks that combine with the character before and for second surrogates).
struct TextLine {
  std::wstring text;
  std::vector<int> columns;
  bool right_to_left = false;  // its paragraph, from line end to line end, begins with such text
  bool ends_page = false;      // a form feed follows
};

/// Cuts a text into lines of a number of columns: at line ends and form feeds, else after the last
/// blank that fits, else where the line is full. Tabs become blanks up to the next eighth column.
/// Other control characters are left out.
class LineBreaker {
 public:
  explicit LineBreaker(std::wstring text) : text_(std::move(text)) {}

  bool AtEnd() const { return at_ == text_.size(); }
  /// The next line, at least one character of it; `columns` is above 0.
  TextLine Next(int columns);
  /// Takes a form feed that comes next: the page has ended already, as it is full.
  void SkipFormFeed() {
    if (!AtEnd() && text_[at_] == L'\f') ++at_;
  }

 private:
  bool TakeLineEnd(TextLine& line);

  const std::wstring text_;
  size_t at_ = 0;
  bool in_paragraph_ = false;
  bool right_to_left_ = false;  // the paragraph
};

}  // namespace quillo::host
