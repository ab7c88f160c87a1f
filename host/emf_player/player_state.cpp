// Records that change the DC's settings: modes, colours, mapping, transforms, save and restore; and
// comments.

#include <utility>

#include "host/emf_format/comment.h"
#include "host/emf_player/playback.h"

namespace quillo::host::emf {

namespace {

/// A handler that puts the record's one number into `field` when it lies in [least, most].
template <auto field, uint32_t least, uint32_t most>
void SetNumber(Playback& dc, PayloadReader& record) {
  const auto value = record.Read<uint32_t>();
  if (value < least || value > most) {
    dc.Fault("there is no mode " + std::to_string(value));
    return;
  }
  dc.state().*field = value;
}

template <auto field>
void SetColor(Playback& dc, PayloadReader& record) {
  dc.state().*field = record.Read<uint32_t>();
}

void SetTextAlign(Playback& dc, PayloadReader& record) {
  dc.state().text_align = record.Read<uint32_t>();
}

void SetMiterLimit(Playback& dc, PayloadReader& record) {
  // The published format has an integer here; what GDI writes is a float. An integer of a sensible
  // size reads as a float that is almost 0.
  const auto as_float = record.Read<float>();
  const auto as_integer = LoadOrZero<uint32_t>(record.record(), 8);
  const float limit = as_integer < 0x00800000 ? static_cast<float>(as_integer) : as_float;
  if (!(limit >= 1)) {
    dc.Fault("a miter limit below 1");
    return;
  }
  dc.state().miter_limit = limit;
}

void SetBrushOrigin(Playback& dc, PayloadReader& record) {
  dc.state().brush_origin = record.Read<PointL>();
}

void SetTextJustification(Playback& dc, PayloadReader& record) {
  dc.state().break_extra = record.Read<int32_t>();
  dc.state().break_count = record.Read<uint32_t>();
}

void SetLayout(Playback& dc, PayloadReader& record) {
  if ((record.Read<uint32_t>() & LAYOUT_RTL) != 0) dc.NotCarried();
}

// -- Mapping -----------------------------------------------------------------------------------

void SetMapMode(Playback& dc, PayloadReader& record) {
  const auto mode = record.Read<uint32_t>();
  if (!dc.state().page.SetMapMode(mode)) {
    dc.Fault("there is no mapping mode " + std::to_string(mode));
  }
  dc.TransformChanged();
}

template <auto set>
void SetOrigin(Playback& dc, PayloadReader& record) {
  (dc.state().page.*set)(record.Read<PointL>());
  dc.TransformChanged();
}

template <auto set>
void SetExtent(Playback& dc, PayloadReader& record) {
  if (!(dc.state().page.*set)(record.Read<SizeL>())) dc.Fault("an extent of 0");
  dc.TransformChanged();
}

template <auto scale>
void ScaleExtent(Playback& dc, PayloadReader& record) {
  PointL multiply, divide;
  multiply.x = record.Read<int32_t>();
  divide.x = record.Read<int32_t>();
  multiply.y = record.Read<int32_t>();
  divide.y = record.Read<int32_t>();
  if (!(dc.state().page.*scale)(multiply, divide)) dc.Fault("an extent scaled by 0");
  dc.TransformChanged();
}

// -- World transform ---------------------------------------------------------------------------

Transform ReadTransform(PayloadReader& record) {
  Transform map;
  for (double* value : {&map.m11, &map.m12, &map.m21, &map.m22, &map.dx, &map.dy}) {
    *value = record.Read<float>();
  }
  return map;
}

void ChangeWorld(Playback& dc, const Transform& world) {
  if (!world.Usable()) {
    dc.Fault("the transform has no inverse");
    return;
  }
  dc.state().world = world;
  dc.TransformChanged();
}

void SetWorldTransform(Playback& dc, PayloadReader& record) {
  ChangeWorld(dc, ReadTransform(record));
}

void ModifyWorldTransform(Playback& dc, PayloadReader& record) {
  constexpr uint32_t kSet = 4;  // MWT_SET
  const Transform map = ReadTransform(record);
  const Transform& world = dc.state().world;
  switch (const auto mode = record.Read<uint32_t>()) {
    case MWT_IDENTITY:
      return ChangeWorld(dc, Transform());
    case MWT_LEFTMULTIPLY:
      return ChangeWorld(dc, map.Then(world));
    case MWT_RIGHTMULTIPLY:
      return ChangeWorld(dc, world.Then(map));
    case kSet:
      return ChangeWorld(dc, map);
    default:
      dc.Fault("there is no mode " + std::to_string(mode));
  }
}

// -- Save and restore --------------------------------------------------------------------------

void SaveState(Playback& dc, PayloadReader&) {
  if (!dc.Save()) dc.Fault("too many saved states");
}

void RestoreState(Playback& dc, PayloadReader& record) {
  const auto level = record.Read<int32_t>();
  if (!dc.Restore(level)) dc.Fault("there is no saved state " + std::to_string(level));
}

/// Comments leave no trace, but damage in one is worth a word.
void Comment(Playback& dc, PayloadReader& record) {
  std::string what = FindCommentFault(record.record());
  if (!what.empty()) dc.Remark(std::move(what));
}

}  // namespace

void AddStateHandlers(HandlerTable& table) {
  table[kEmrSETBKMODE] = SetNumber<&DcState::background_mode, TRANSPARENT, OPAQUE>;
  table[kEmrSETPOLYFILLMODE] = SetNumber<&DcState::poly_fill_mode, ALTERNATE, WINDING>;
  table[kEmrSETROP2] = SetNumber<&DcState::rop2, R2_BLACK, R2_WHITE>;
  table[kEmrSETSTRETCHBLTMODE] = SetNumber<&DcState::stretch_mode, BLACKONWHITE, HALFTONE>;
  table[kEmrSETARCDIRECTION] =
      SetNumber<&DcState::arc_direction, AD_COUNTERCLOCKWISE, AD_CLOCKWISE>;
  table[kEmrSETTEXTCOLOR] = SetColor<&DcState::text_color>;
  table[kEmrSETBKCOLOR] = SetColor<&DcState::background_color>;
  table[kEmrSETTEXTALIGN] = SetTextAlign;
  table[kEmrSETMITERLIMIT] = SetMiterLimit;
  table[kEmrSETBRUSHORGEX] = SetBrushOrigin;
  table[kEmrSETTEXTJUSTIFICATION] = SetTextJustification;
  table[kEmrSETLAYOUT] = SetLayout;
  table[kEmrSETMAPMODE] = SetMapMode;
  table[kEmrSETWINDOWORGEX] = SetOrigin<&PageTransform::SetWindowOrigin>;
  table[kEmrSETVIEWPORTORGEX] = SetOrigin<&PageTransform::SetViewportOrigin>;
  table[kEmrSETWINDOWEXTEX] = SetExtent<&PageTransform::SetWindowExtent>;
  table[kEmrSETVIEWPORTEXTEX] = SetExtent<&PageTransform::SetViewportExtent>;
  table[kEmrSCALEWINDOWEXTEX] = ScaleExtent<&PageTransform::ScaleWindowExtent>;
  table[kEmrSCALEVIEWPORTEXTEX] = ScaleExtent<&PageTransform::ScaleViewportExtent>;
  table[kEmrSETWORLDTRANSFORM] = SetWorldTransform;
  table[kEmrMODIFYWORLDTRANSFORM] = ModifyWorldTransform;
  table[kEmrGDICOMMENT] = Comment;
  table[kEmrSAVEDC] = SaveState;
  table[kEmrRESTOREDC] = RestoreState;
}

}  // namespace quillo::host::emf
