#include "host/engine/services/clips.h"

#include <utility>

#include "host/engine/services/guard.h"

namespace quillo::host {
namespace {

/// The rectangle of a clip as a path, for a driver that asks for it.
std::vector<PathRun> RectangleOutline(const RECTL& rect) {
  const FIX left = LTOFX(rect.left), top = LTOFX(rect.top);
  const FIX right = LTOFX(rect.right), bottom = LTOFX(rect.bottom);
  return {{PD_BEGINSUBPATH | PD_ENDSUBPATH | PD_CLOSEFIGURE,
           {{left, top}, {left, bottom}, {right, bottom}, {right, top}}}};
}

}  // namespace

ClipObject::ClipObject(BYTE complexity, const RECTL& bounds)
    : CLIPOBJ{}, outline_(RectangleOutline(bounds)) {
  rclBounds = bounds;
  iDComplexity = complexity;
  iFComplexity = FC_RECT;
  iMode = TC_RECTANGLES;
}

ClipObject::ClipObject(const RECTL& bounds, std::vector<PathRun> outline)
    : CLIPOBJ{}, outline_(std::move(outline)) {
  rclBounds = bounds;
  iDComplexity = DC_COMPLEX;
  iFComplexity = FC_COMPLEX;
  iMode = TC_RECTANGLES;
}

}  // namespace quillo::host

using namespace quillo::host;

extern "C" PATHOBJ* APIENTRY CLIPOBJ_ppoGetPath(CLIPOBJ* pco) {
  return Service<PATHOBJ*>("CLIPOBJ_ppoGetPath", nullptr, [&]() -> PATHOBJ* {
    return pco == nullptr ? nullptr : NewDriverPath(static_cast<ClipObject*>(pco)->Outline());
  });
}
