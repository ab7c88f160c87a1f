#pragma once

#include "base/ddi.h"

#include <cstddef>
#include <string>
#include <vector>

namespace quillo::host {

/// A string of placed glyphs with the public STROBJ in front.
class StringObject : public STROBJ {
 public:
  /// `batch` 0: all positions are available directly (pgp); otherwise they must be enumerated, in
  /// batches of this size. `text` has the characters, or the glyph indexes of a string of those.
  StringObject(std::vector<GLYPHPOS> glyphs, std::wstring text, FLONG accelerators,
               const RECTL& background, size_t batch = 0);
  StringObject(const StringObject&) = delete;
  StringObject& operator=(const StringObject&) = delete;

  void RestartEnumeration() { next_ = 0; }
  /// Returns the next batch; false when it is the last one.
  bool Enumerate(ULONG& count, GLYPHPOS*& positions);

 private:
  std::vector<GLYPHPOS> glyphs_;
  std::wstring text_;
  size_t batch_;
  size_t next_ = 0;
};

}  // namespace quillo::host
