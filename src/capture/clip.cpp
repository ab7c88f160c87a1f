#include "capture/clip.h"

#include <cstdint>
#include <limits>

#include "base/owner.h"
#include "capture/builders.h"
#include "capture/geometry.h"
#include "capture/path.h"

namespace quillo {
namespace {

/// A path that the engine made for the driver.
struct EnginePathTraits {
  using Type = PATHOBJ*;
  static constexpr Type kNull = nullptr;
  static void Release(Type path) { EngDeletePath(path); }
};
using EnginePath = Owner<EnginePathTraits>;

using namespace records;

bool Contains(const Rect& outer, const Rect& inner) {
  return outer.left <= inner.left && outer.top <= inner.top && outer.right >= inner.right &&
         outer.bottom >= inner.bottom;
}

constexpr int32_t OneLess(int32_t value) {
  return value == std::numeric_limits<int32_t>::min() ? value : value - 1;
}

constexpr int32_t OneMore(int32_t value) {
  return value == std::numeric_limits<int32_t>::max() ? value : value + 1;
}

bool WriteRectClip(DEVICE_PDEV& device, const Rect& clip, const Rect* drawing_bounds,
                   Rect* clip_bounds) {
  if (drawing_bounds != nullptr && Contains(clip, *drawing_bounds)) return false;
  EmitRecord(device, REC_BEGINPATH);
  EmitRectangle(device,
                {OneLess(clip.left), OneLess(clip.top), OneMore(clip.right), OneMore(clip.bottom)});
  EmitRecord(device, REC_ENDPATH);
  EmitRecord(device, REC_SELECTCLIPPATH);
  if (clip_bounds != nullptr) *clip_bounds = clip;
  return true;
}

bool WriteComplexClip(DEVICE_PDEV& device, CLIPOBJ* clip, Rect* clip_bounds) {
  EnginePath outline(CLIPOBJ_ppoGetPath(clip));
  if (!outline || WritePath(device, outline.Get(), kNoFillMode) == WrittenPath::kRefused) {
    return false;
  }
  if (clip_bounds != nullptr) *clip_bounds = PathBounds(outline.Get());
  outline.Reset();
  EmitRecord(device, REC_SELECTCLIPPATH);
  return true;
}

}  // namespace

bool WriteClip(DEVICE_PDEV& device, CLIPOBJ* clip, const Rect* drawing_bounds, Rect* clip_bounds) {
  if (clip == nullptr) return false;
  switch (clip->iDComplexity) {
    case DC_RECT:
      return WriteRectClip(device, ToRect(clip->rclBounds), drawing_bounds, clip_bounds);
    case DC_COMPLEX:
      return WriteComplexClip(device, clip, clip_bounds);
    default:
      return false;
  }
}

}  // namespace quillo
