#include <deque>
#include <utility>

#include "host/engine/blit_areas.h"
#include "host/engine/graphics.h"
#include "host/engine/raster.h"
#include "host/engine/raster_operation.h"
#include "host/engine/raster_steps.h"

// Stretches that combine their source with the page: held back until the next drawing, as a mask
// and its picture come one after the other and are drawn as one.
namespace quillo::host {

bool Graphics::HeldStretch::SamePlace(const HeldStretch& other) const {
  const SIZEL size = SizeOf(source_rect), other_size = SizeOf(other.source_rect);
  return target.left == other.target.left && target.top == other.target.top &&
         target.right == other.target.right && target.bottom == other.target.bottom &&
         size.cx == other_size.cx && size.cy == other_size.cy &&
         (state.clip.SameAs(other.state.clip) ||
          EqualRgn(state.clip.Handle(), other.state.clip.Handle()));
}

void Graphics::Hold(HeldStretch stretch) {
  constexpr size_t kMaxHeld = 3;  // a picture may come before its mask and again after it
  if (held_.size() == kMaxHeld || (!held_.empty() && !held_.back().SamePlace(stretch))) Finish();
  held_.push_back(std::move(stretch));
}

void Graphics::Finish() {
  if (held_.empty()) return;
  const std::vector<HeldStretch> held = std::exchange(held_, {});
  const auto& [source, source_rect, target, rop3, state] = held.front();
  const RECTL area = Visible(Ordered(target), state.clip);
  if (IsEmpty(area)) return;

  const SIZEL size = SizeOf(source_rect);
  double expanded = 0, stretched = 0;
  for (const HeldStretch& step : held) {
    expanded += ExpandedBytes(step.source);
    stretched += StretchedBytes(step.source, SizeOf(area));
  }
  const double joined_bytes = PixelCount(size) * kArgbBytes;
  const bool join = held.size() > 1 && budget_.Allows(expanded + joined_bytes);
  // All or nothing: a mask without its picture would be a hole.
  if (!MayMake("DrvBitBlt", expanded + (join ? joined_bytes : stretched))) return;
  std::deque<ReadablePicture> pictures;
  std::vector<RasterStep> steps;
  steps.reserve(held.size());
  for (const HeldStretch& step : held) {
    steps.push_back({&*pictures.emplace_back(step.source),
                     {step.source_rect.left, step.source_rect.top},
                     step.rop3});
  }
  if (join) {
    if (const auto joined = JoinSteps(steps, size)) return LayOver(target, *joined, state);
    if (!MayMake("DrvBitBlt", stretched)) return;
  }
  for (size_t i = 0; i < held.size(); ++i) {
    CombineStretched(*steps[i].picture, held[i].source_rect, target, area, held[i].rop3, nullptr,
                     state);
  }
}

void Graphics::CombineStretched(const BitmapSource& source, const RECTL& source_rect,
                                const RECTL& target, const RECTL& area, uint8_t rop3,
                                const BrushDescription* brush, const DrawState& state) {
  InBands(area, [&](const RECTL& band) {
    const BitmapSource stretched = StretchPart(source, source_rect, target, band);
    RasterOperation(band, SameOperation(rop3), brush, &stretched, {}, nullptr, {}, state);
  });
}

}  // namespace quillo::host
