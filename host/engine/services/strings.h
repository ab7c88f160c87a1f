#pragma once

#include "base/ddi.h"

#include <cstddef>
#include <string>
#include <vector>

namespace quillo::host {

/// A string of placed glyphs with the public STROBJ in front.
class StringObject : public STROBJ {
 public:
  /// `batch` 0 puts all positions at hand (pgp); another number gives them out by enumeration, that
  /// many a step. `text` holds the characters, or the glyph indexes of a string that came as such.
  StringObject(std::vector<GLYPHPOS> glyphs, std::wstring text, FLONG accelerators,
               const RECTL& background, size_t batch = 0);
  StringObject(const StringObject&) = delete;
  StringObject& operator=(const StringObject&) = delete;

  void RestartEnumeration() { next_ = 0; }
  /// Gives the next batch; false when it is the last one.
  bool Enumerate(ULONG& count, GLYPHPOS*& positions);

 private:
  std::vector<GLYPHPOS> glyphs_;
  std::wstring text_;
  size_t batch_;
  size_t next_ = 0;
};

}  // namespace quillo::host
