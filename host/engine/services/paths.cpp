#include "host/engine/services/paths.h"

#include <algorithm>
#include <atomic>
#include <utility>

#include "host/engine/services/guard.h"

namespace quillo::host {
namespace {

std::atomic<size_t> live_paths = 0;

}  // namespace

PathObject::PathObject(std::vector<PathRun> runs) : PATHOBJ{}, runs_(std::move(runs)) {
  for (const PathRun& run : runs_) {
    const ULONG count = static_cast<ULONG>(run.points.size());
    if (run.flags & PD_BEZIERS) {
      fl |= PO_BEZIERS;
      cCurves += count / 3;
    } else {
      cCurves += count;
    }
  }
}

bool PathObject::Enumerate(PATHDATA& data) {
  if (next_ >= runs_.size()) {
    data = {};
    return false;
  }
  PathRun& run = runs_[next_++];
  data = {run.flags, static_cast<ULONG>(run.points.size()), run.points.data()};
  return next_ < runs_.size();
}

RECTFX PathObject::Bounds() const {
  bool any = false;
  RECTFX bounds{};
  for (const PathRun& run : runs_) {
    for (const POINTFIX& point : run.points) {
      if (!std::exchange(any, true)) bounds = {point.x, point.y, point.x, point.y};
      bounds = {std::min(bounds.xLeft, point.x), std::min(bounds.yTop, point.y),
                std::max(bounds.xRight, point.x), std::max(bounds.yBottom, point.y)};
    }
  }
  return bounds;
}

size_t LivePathCount() { return live_paths; }

PATHOBJ* NewDriverPath(std::vector<PathRun> runs) {
  PATHOBJ* path = new PathObject(std::move(runs));
  ++live_paths;
  return path;
}

}  // namespace quillo::host

using namespace quillo::host;

extern "C" VOID APIENTRY PATHOBJ_vEnumStart(PATHOBJ* ppo) {
  static_cast<PathObject*>(ppo)->RestartEnumeration();
}

extern "C" WINBOOL APIENTRY PATHOBJ_bEnum(PATHOBJ* ppo, PATHDATA* ppd) {
  return static_cast<PathObject*>(ppo)->Enumerate(*ppd) ? TRUE : FALSE;
}

extern "C" VOID APIENTRY PATHOBJ_vGetBounds(PATHOBJ* ppo, PRECTFX prectfx) {
  *prectfx = static_cast<PathObject*>(ppo)->Bounds();
}

extern "C" VOID APIENTRY EngDeletePath(PATHOBJ* ppo) {
  if (ppo == nullptr) return;
  delete static_cast<PathObject*>(ppo);
  --live_paths;
}
