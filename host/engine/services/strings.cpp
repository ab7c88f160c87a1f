#include "host/engine/services/strings.h"

#include <algorithm>
#include <utility>

#include "host/engine/services/guard.h"

namespace quillo::host {

StringObject::StringObject(std::vector<GLYPHPOS> glyphs, std::wstring text, FLONG accelerators,
                           const RECTL& background, size_t batch)
    : STROBJ{}, glyphs_(std::move(glyphs)), text_(std::move(text)), batch_(batch) {
  cGlyphs = static_cast<ULONG>(glyphs_.size());
  flAccel = accelerators;
  rclBkGround = background;
  pgp = batch_ == 0 ? glyphs_.data() : nullptr;
  pwszOrg = text_.data();
}

bool StringObject::Enumerate(ULONG& count, GLYPHPOS*& positions) {
  const size_t step = std::min(batch_ == 0 ? glyphs_.size() : batch_, glyphs_.size() - next_);
  count = static_cast<ULONG>(step);
  positions = glyphs_.data() + next_;
  next_ += step;
  return next_ < glyphs_.size();
}

}  // namespace quillo::host

using namespace quillo::host;

extern "C" VOID APIENTRY STROBJ_vEnumStart(STROBJ* pstro) {
  static_cast<StringObject*>(pstro)->RestartEnumeration();
}

/// TRUE: more follow; FALSE: these were the last; DDI_ERROR: failed.
extern "C" WINBOOL APIENTRY STROBJ_bEnum(STROBJ* pstro, ULONG* pc, PGLYPHPOS* ppgpos) {
  if (TakeFailure("STROBJ_bEnum")) return static_cast<WINBOOL>(DDI_ERROR);
  return static_cast<StringObject*>(pstro)->Enumerate(*pc, *ppgpos) ? TRUE : FALSE;
}
