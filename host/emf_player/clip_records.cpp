// Records that change the clip: rectangles, regions and the meta region. (The clip from a path is
// in path_records.cpp.)

#include "host/emf_player/emf_player.h"
#include "host/emf_player/record_handlers.h"
#include "host/emf_player/region_data.h"
#include "host/emf_player/rounding.h"

namespace quillo::host::emf {

namespace {

void IntersectClipRect(EmfPlayer& player, PayloadReader& record) {
  player.CombineClip(MapRectangle(record.Read<RectL>(), player.ToPage()), RGN_AND);
}

void ExcludeClipRect(EmfPlayer& player, PayloadReader& record) {
  player.CombineClip(MapRectangle(record.Read<RectL>(), player.ToPage()), RGN_DIFF);
}

void OffsetClip(EmfPlayer& player, PayloadReader& record) {
  const auto offset = record.Read<PointL>();
  const PointD moved = player.ToPage().ApplyVector(offset.x, offset.y);
  player.state().clip = player.state().clip.Offset(ToPixel(moved.x), ToPixel(moved.y));
  player.ClipChanged();
}

/// The region is in pixels of the reference device, whatever the DC's transform.
void SelectClipRegion(EmfPlayer& player, PayloadReader& record) {
  const auto size = record.Read<uint32_t>();
  const auto mode = record.Read<uint32_t>();
  if (mode < RGN_AND || mode > RGN_COPY) {
    player.Fault("unknown region mode " + std::to_string(mode));
    return;
  }
  if (size == 0) {
    if (mode == RGN_COPY) {
      player.CombineClip(ClipShape(), RGN_COPY);
    } else {
      player.Fault("no region to combine with");
    }
    return;
  }
  std::string what;
  const auto region = ReadRegion(record, size, player.DeviceToPage(), what);
  if (!what.empty()) player.Fault(what);
  if (region) player.CombineClip(*region, static_cast<int>(mode));
}

void SetMetaRegion(EmfPlayer& player, PayloadReader&) {
  player.state().meta = player.state().meta.Combined(player.state().clip, RGN_AND);
  player.state().clip = ClipShape();
  player.ClipChanged();
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
