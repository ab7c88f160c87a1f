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

LineOrder OrderLine(const std::wstring& text, bool right_to_left) {
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

  std::vector<size_t> units;
  std::vector<bool> leftwards(text.size());
  for (const int run : runs) {
    const auto& item = items[static_cast<size_t>(run)];
    const size_t first = static_cast<size_t>(item.iCharPos);
    const size_t last = static_cast<size_t>((&item)[1].iCharPos);
    const size_t start = units.size();
    for (size_t i = first; i < last; ++i) units.push_back(i);
    if (item.a.s.uBidiLevel % 2 == 0) continue;
    std::reverse(units.begin() + static_cast<ptrdiff_t>(start), units.end());
    std::fill(leftwards.begin() + static_cast<ptrdiff_t>(first),
              leftwards.begin() + static_cast<ptrdiff_t>(last), true);
  }
  for (size_t place = 1; place < units.size(); ++place) {
    const size_t unit = units[place];
    if (units[place - 1] == unit + 1 && IS_HIGH_SURROGATE(text[unit]) &&
        IS_LOW_SURROGATE(text[unit + 1])) {
      std::swap(units[place - 1], units[place]);
    }
  }
  if (std::is_sorted(units.begin(), units.end())) units.clear();
  return {std::move(units), std::move(leftwards)};
}

wchar_t Mirrored(wchar_t unit) {
  // Pairs of the Unicode property Bidi_Mirroring_Glyph.
  static constexpr std::wstring_view kPairs =
      L"()<>[]{}\u00AB\u00BB\u2039\u203A\u2045\u2046\u207D\u207E\u208D\u208E\u2264\u2265"
      L"\u2308\u2309\u230A\u230B\u27E6\u27E7\u27E8\u27E9\u27EA\u27EB\u2983\u2984\u3008\u3009"
      L"\u300A\u300B\u300C\u300D\u300E\u300F\u3010\u3011\u3014\u3015";
  const size_t at = kPairs.find(unit);
  return at == kPairs.npos ? unit : kPairs[at ^ 1];
}

}  // namespace quillo::host
