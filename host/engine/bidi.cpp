#include "host/engine/bidi.h"

#include "base/windows.h"

#include <algorithm>
#include <usp10.h>
#include <utility>

namespace quillo::host {
namespace {

/// Whether a unit can cause text to run from right to left: Hebrew to the end of the Arabic
/// blocks, the presentation forms, the marks and embeddings, and surrogates.
bool MayRunLeftwards(wchar_t unit) {
  return (unit >= 0x0590 && unit < 0x0900) || (unit >= 0x200F && unit <= 0x202E) ||
         (unit >= 0xD800 && unit < 0xE000) || (unit >= 0xFB1D && unit < 0xFF00);
}

WORD DirectionOf(wchar_t unit) {
  WORD type = 0;
  return GetStringTypeW(CT_CTYPE2, &unit, 1, &type) ? type : WORD{C2_NOTAPPLICABLE};
}

}  // namespace

bool IsLeftwardLetter(wchar_t unit) { return DirectionOf(unit) == C2_RIGHTTOLEFT; }

bool BeginsLeftwards(std::wstring_view text) {
  for (const wchar_t unit : text) {
    const WORD direction = DirectionOf(unit);
    if (direction == C2_LEFTTORIGHT) return false;
    if (direction == C2_RIGHTTOLEFT) return true;
  }
  return false;
}

std::vector<size_t> VisualOrder(const std::wstring& text, bool right_to_left) {
  if (text.empty() || (!right_to_left && std::none_of(text.begin(), text.end(), MayRunLeftwards))) {
    return {};
  }
  const SCRIPT_CONTROL control{};
  SCRIPT_STATE state{};
  state.uBidiLevel = right_to_left ? 1 : 0;
  // No text has more items than units; one more marks the end of the last one.
  std::vector<SCRIPT_ITEM> items(text.size() + 2);
  int count = 0;
  if (FAILED(ScriptItemize(text.c_str(), static_cast<int>(text.size()),
                           static_cast<int>(items.size()) - 1, &control, &state, items.data(),
                           &count))) {
    return {};
  }
  std::vector<BYTE> levels;
  levels.reserve(static_cast<size_t>(count));
  for (int i = 0; i < count; ++i)
    levels.push_back(static_cast<BYTE>(items[static_cast<size_t>(i)].a.s.uBidiLevel));
  std::vector<int> runs(levels.size());
  if (FAILED(ScriptLayout(count, levels.data(), runs.data(), nullptr))) return {};

  std::vector<size_t> order;
  for (const int run : runs) {
    const auto& item = items[static_cast<size_t>(run)];
    const size_t first = static_cast<size_t>(item.iCharPos);
    const size_t last = static_cast<size_t>((&item)[1].iCharPos);
    const size_t start = order.size();
    for (size_t i = first; i < last; ++i) order.push_back(i);
    if (item.a.s.uBidiLevel % 2 != 0)
      std::reverse(order.begin() + static_cast<ptrdiff_t>(start), order.end());
  }
  for (size_t place = 1; place < order.size(); ++place) {
    const size_t unit = order[place];
    if (order[place - 1] == unit + 1 && IS_HIGH_SURROGATE(text[unit]) &&
        IS_LOW_SURROGATE(text[unit + 1])) {
      std::swap(order[place - 1], order[place]);
    }
  }
  return std::is_sorted(order.begin(), order.end()) ? std::vector<size_t>{} : order;
}

}  // namespace quillo::host
