// Records that change the clip: rectangles, regions and the meta region. (The clip from a path is
// among the records of paths.)

#include "host/emf_player/playback.h"
#include "host/emf_player/region_data.h"
#include "host/emf_player/rounding.h"

namespace quillo::host::emf {

namespace {

void IntersectClipRect(Playback& dc, PayloadReader& record) {
  dc.CombineClip(MapRectangle(record.Read<RectL>(), dc.ToPage()), RGN_AND);
}

void ExcludeClipRect(Playback& dc, PayloadReader& record) {
  dc.CombineClip(MapRectangle(record.Read<RectL>(), dc.ToPage()), RGN_DIFF);
}

void OffsetClip(Playback& dc, PayloadReader& record) {
  const auto offset = record.Read<PointL>();
  const PointD moved = dc.ToPage().ApplyVector(offset.x, offset.y);
  dc.state().clip = dc.state().clip.Offset(ToPixel(moved.x), ToPixel(moved.y));
  dc.ClipChanged();
}

/// The region is in pixels of the reference device, whatever the DC's transforms.
void SelectClipRegion(Playback& dc, PayloadReader& record) {
  const auto size = record.Read<uint32_t>();
  const auto mode = record.Read<uint32_t>();
  if (mode < RGN_AND || mode > RGN_COPY) {
    dc.Fault("there is no way " + std::to_string(mode) + " to combine regions");
    return;
  }
  if (size == 0) {
    if (mode == RGN_COPY) {
      dc.CombineClip(ClipShape(), RGN_COPY);
    } else {
      dc.Fault("no region to combine with");
    }
    return;
  }
  std::string what;
  const auto region = ReadRegion(record, size, dc.DeviceToPage(), what);
  if (!what.empty()) dc.Fault(what);
  if (region) dc.CombineClip(*region, static_cast<int>(mode));
}

void SetMetaRegion(Playback& dc, PayloadReader&) {
  dc.state().meta = dc.state().meta.Combined(dc.state().clip, RGN_AND);
  dc.state().clip = ClipShape();
  dc.ClipChanged();
}

}  // namespace

void AddClipHandlers(HandlerTable& table) {
  table[kEmrINTERSECTCLIPRECT] = IntersectClipRect;
  table[kEmrEXCLUDECLIPRECT] = ExcludeClipRect;
  table[kEmrOFFSETCLIPRGN] = OffsetClip;
  table[kEmrEXTSELECTCLIPRGN] = SelectClipRegion;
  table[kEmrSETMETARGN] = SetMetaRegion;
}

}  // namespace quillo::host::emf
