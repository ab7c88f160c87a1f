#pragma once

#include "base/windows.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/engine/text_font.h"

namespace quillo::host {

/// A fixed-pitch font, and behind it every other font of the system for the characters that it
/// lacks.
class FontChain {
 public:
  /// `height`: of the characters, in the units of the text.
  explicit FontChain(LONG height);

  const std::shared_ptr<const TextFont>& Main() const { return main_; }
  /// The first font that has a character; the main one for characters that none has.
  const std::shared_ptr<const TextFont>& FontFor(wchar_t unit);
  /// How many different characters no font has.
  size_t UnknownCharacters() const { return unknown_; }

 private:
  using FontPointer = std::shared_ptr<const TextFont>;
  FontPointer OpenFont(const std::wstring& face) const;
  const FontPointer* FindOther(wchar_t unit);

  const LONG height_;
  FontPointer main_;
  std::vector<std::wstring> faces_;              // of the others, in the order of trying
  std::vector<FontPointer> others_;              // opened so far; null for one that cannot be
  std::map<wchar_t, const FontPointer*> known_;  // characters that the main font lacks
  size_t unknown_ = 0;
};

}  // namespace quillo::host
